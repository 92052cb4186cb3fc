#include "tools/import/sample_rates.h"

#include <algorithm>
#include <iterator>

namespace vornak::tool {
namespace {

constexpr int s_Sayable[] = {8000,  11025, 16000, 22050, 32000,  44056,  44100,  47250,   48000,
                             50000, 50400, 88200, 96000, 176400, 192000, 352800, 2822400, 5644800};

// that files have, but the list doesn't
constexpr int s_Unsayable[] = {7350, 12000, 24000, 64000, 128000, 384000, 705600, 768000};

bool isIn(Range range, int rate)
{
    return rate >= range.least && (range.most == 0 || rate <= range.most);
}

} // namespace

std::optional<SayableRates> sayableRates(Range rates)
{
    Range said;
    if (rates.least > 0) {
        const auto *const least = std::ranges::lower_bound(s_Sayable, rates.least);
        if (least == std::end(s_Sayable)) return std::nullopt;
        said.least = *least;
    }
    if (rates.most > 0 && rates.most < *std::rbegin(s_Sayable)) {
        const auto *const above = std::ranges::upper_bound(s_Sayable, rates.most);
        if (above == std::begin(s_Sayable)) return std::nullopt;
        said.most = above[-1];
    }
    if (said.most != 0 && said.least > said.most) return std::nullopt;
    const auto isLost = [&](int rate) { return isIn(rates, rate) && !isIn(said, rate); };
    return SayableRates{said, std::ranges::none_of(s_Unsayable, isLost)};
}

} // namespace vornak::tool

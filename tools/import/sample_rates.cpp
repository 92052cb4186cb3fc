#include "tools/import/sample_rates.h"

#include "profile/sample_rates.h"

#include <algorithm>
#include <iterator>

namespace vornak::tool {
namespace {

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
        const auto *const least = std::ranges::lower_bound(s_StandardSampleRates, rates.least);
        if (least == std::end(s_StandardSampleRates)) return std::nullopt;
        said.least = *least;
    }
    if (rates.most > 0 && rates.most < *std::rbegin(s_StandardSampleRates)) {
        const auto *const above = std::ranges::upper_bound(s_StandardSampleRates, rates.most);
        if (above == std::begin(s_StandardSampleRates)) return std::nullopt;
        said.most = above[-1];
    }
    if (said.most != 0 && said.least > said.most) return std::nullopt;
    const auto isLost = [&](int rate) { return isIn(rates, rate) && !isIn(said, rate); };
    return SayableRates{said, std::ranges::none_of(s_Unsayable, isLost)};
}

} // namespace vornak::tool

#include "tools/import/sample_rates.h"

#include "base/media_ids.h"
#include "profile/sample_rates.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace vornak::tool {
namespace {

// that files have, but the list doesn't
constexpr int s_Unsayable[] = {7350, 12000, 24000, 64000, 128000, 384000, 705600, 768000};

constexpr int s_Mpeg[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
constexpr int s_Aac[] = {7350,  8000,  11025, 12000, 16000, 22050, 24000,
                         32000, 44100, 48000, 64000, 88200, 96000};
constexpr int s_Dolby[] = {16000, 22050, 24000, 32000, 44100, 48000};

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

bool hasRateBetween(int codec, int above, int below)
{
    constexpr struct {
        int codec;
        std::span<const int> rates;
    } s_Rates[] = {{"mp3"_codec, s_Mpeg},  {"mp2"_codec, s_Mpeg},     {"mp1"_codec, s_Mpeg},
                   {"aac"_codec, s_Aac},   {"aac_latm"_codec, s_Aac}, {"ac3"_codec, s_Dolby},
                   {"eac3"_codec, s_Dolby}};
    for (const auto &row : s_Rates)
        if (row.codec == codec)
            return std::ranges::any_of(row.rates,
                                       [&](int rate) { return rate > above && rate < below; });
    return below - above > 1;
}

} // namespace vornak::tool

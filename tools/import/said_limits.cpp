#include "tools/import/said_limits.h"

#include "base/media_ids.h"
#include "platform/registry_names.h"
#include "profile/sample_rates.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <span>
#include <string_view>

namespace vornak::tool {
namespace {

// that files have, but the list doesn't
constexpr int s_Unsayable[] = {7350, 12000, 24000, 64000, 128000, 384000, 705600, 768000};

constexpr int s_Mpeg[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};
constexpr int s_Aac[] = {7350,  8000,  11025, 12000, 16000, 22050, 24000,
                         32000, 44100, 48000, 64000, 88200, 96000};
constexpr int s_Dolby[] = {16000, 22050, 24000, 32000, 44100, 48000};

/// What a picture can have that a decoder may stumble over; codecs that aren't listed can have
/// all of it. Fields of HEVC are pictures of their own, no other coding: they count for little
/// enough that nothing else is turned away on their account.
constexpr struct {
    const char *codec;
    const char *profile; // empty: all of the codec's
    const char *oddities;
} s_Possible[] = {
    {"h264", "", "interlaced|too_many_refs|vfr"},
    {"h264", "high10", "10bit|hdr|dolby_vision"},
    {"h264", "high10_intra", "10bit|hdr|dolby_vision"},
    {"h264", "high422", "10bit|chroma422|hdr|dolby_vision"},
    {"h264", "high422_intra", "10bit|chroma422|hdr|dolby_vision"},
    {"h264", "high444", "10bit|12bit|chroma422|chroma444|hdr|dolby_vision"},
    {"h264", "high444_intra", "10bit|12bit|chroma422|chroma444|hdr|dolby_vision"},
    {"h264", "cavlc444", "10bit|12bit|chroma422|chroma444|hdr|dolby_vision"},
    {"hevc", "", "vfr"},
    {"hevc", "main10", "10bit|hdr|dolby_vision"},
    {"hevc", "rext", "10bit|12bit|chroma422|chroma444|hdr|dolby_vision"},
    {"hevc", "scc", "10bit|12bit|chroma422|chroma444|hdr|dolby_vision"},
    {"vp8", "", "vfr"},
    {"vp9", "", "vfr"},
    {"vp9", "profile1", "chroma422|chroma444"},
    {"vp9", "profile2", "10bit|12bit|hdr|dolby_vision"},
    {"vp9", "profile3", "10bit|12bit|chroma422|chroma444|hdr|dolby_vision"},
    {"av1", "", "10bit|hdr|dolby_vision|vfr"},
    {"av1", "high", "chroma444"},
    {"av1", "professional", "12bit|chroma422|chroma444"},
    {"mpeg1video", "", "vfr"},
    {"mpeg2video", "", "interlaced|vfr"},
    {"mpeg2video", "high", "chroma422"},
    {"mpeg2video", "422", "chroma422"},
    {"mpeg4", "", "interlaced|packed_bitstream|vfr|gmc|qpel"},
    {"msmpeg4v1", "", "vfr"},
    {"msmpeg4v2", "", "vfr"},
    {"msmpeg4v3", "", "vfr"},
    {"wmv1", "", "vfr"},
    {"wmv2", "", "vfr"},
    {"wmv3", "", "interlaced|vfr"},
    {"vc1", "", "interlaced|vfr"},
    {"h263", "", "vfr"},
    {"flv1", "", "vfr"},
    {"theora", "", "chroma422|chroma444|vfr"},
};

int allOddities()
{
    int bits = 0;
    for (const RegistryName &row : playExceptionNames()) bits |= row.id;
    return bits;
}

/// What a picture of the codec with any of the profiles can have.
int possibleOddities(int codec, int profiles)
{
    const std::string name = codecText(codec);
    bool isListed = false;
    int bits = 0;
    for (const auto &row : s_Possible) {
        if (row.codec != name) continue;
        isListed = true;
        const int profile = profilesNamed(row.profile);
        if (profile == 0 || profiles == 0 || (profiles & profile) != 0)
            bits |= playExceptionsNamed(row.oddities);
    }
    return isListed ? bits : allOddities();
}

/// The oddities that a picture can have of which the limits refuse any; 0: it can have none.
int refusedAmong(const Limits &limits)
{
    const int possible = possibleOddities(limits.codec, limits.profiles);
    return (limits.refused & possible) != 0 ? possible : 0;
}

/// The widest range that the list can say and that lies within `rates`; nothing: there is none.
std::optional<Range> sayableRates(Range rates)
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
    return said;
}

/// Whether a rate that is taken can't be said: one that files have, or the only one.
bool losesRate(Range taken, const std::optional<Range> &said)
{
    if (!said && taken.least == taken.most) return true;
    return std::ranges::any_of(s_Unsayable, [&](int rate) {
        return contains(taken, rate) && !(said && contains(*said, rate));
    });
}

} // namespace

Union withSayableRates(const Union &all, const Note &note)
{
    Union sayable;
    for (Limits limits : all) {
        const std::optional<Range> said = sayableRates(limits.sampleRate);
        if (losesRate(limits.sampleRate, said))
            note.stricter("rules name the usual sample rates alone");
        if (!said) continue;
        limits.sampleRate = *said;
        add(sayable, limits);
    }
    return sayable;
}

Union levelsWhere(const std::function<bool(int level)> &isTaken, int codec, const Note &note)
{
    Limits limits;
    const std::span<const int> known = knownLevels(codec);
    const auto gap = std::ranges::find_if_not(known, isTaken);
    if (gap == known.end()) return {limits};
    if (std::any_of(gap, known.end(), isTaken))
        note.stricter("a rule limits levels upwards alone, so those above a gap are transcoded");
    if (gap == known.begin()) return {};
    limits.level = gap[-1];
    return {limits};
}

Union interlacingWhere(bool takesProgressive, bool takesInterlaced, const char *otherwise,
                       const Note &note)
{
    if (takesProgressive) return refusing(takesInterlaced ? "" : "interlaced");
    note.stricter("no rule can turn away progressive pictures alone, {}", otherwise);
    return {};
}

Union refusing(const char *oddities)
{
    Limits limits;
    limits.refused = playExceptionsNamed(oddities);
    return {limits};
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

int playExceptions(const Limits &limits)
{
    return refusedAmong(limits) != 0 ? allOddities() : limits.refused;
}

int alsoTurnedAway(const Limits &limits)
{
    return refusedAmong(limits) & ~limits.refused;
}

Limits withoutDolbyVision(const Limits &limits)
{
    Limits without = limits;
    without.refused &= ~playExceptionsNamed("dolby_vision");
    return without;
}

bool isForDolbyVision(const Limits &limits)
{
    return (alsoTurnedAway(limits) & ~alsoTurnedAway(withoutDolbyVision(limits))) != 0;
}

int allButDolbyVision()
{
    return allOddities() & ~playExceptionsNamed("dolby_vision");
}

std::vector<Limits> splitByOddities(const Limits &limits)
{
    int without = 0;
    int with = 0;
    for (const ProfileName &row : profileNames()) {
        const bool isTaken = limits.profiles == 0 || (limits.profiles & row.bit) != 0;
        if (row.codecId != limits.codec || !isTaken) continue;
        const int possible = possibleOddities(row.codecId, row.bit);
        ((limits.refused & possible) == 0 ? without : with) |= row.bit;
    }
    if (without == 0 || with == 0) return {limits};
    Limits plain = limits;
    Limits odd = limits;
    plain.profiles = without;
    odd.profiles = with;
    return {plain, odd};
}

void noteOddities(const Limits &limits, const Note &note)
{
    std::string what = codecText(limits.codec);
    if (limits.profiles != 0)
        what += fmt::format(" ({})", fmt::join(profileTexts(limits.profiles, limits.codec), ", "));
    const bool refusesDolbyVision = isForDolbyVision(limits);
    if (refusesDolbyVision)
        note.stricter("{} with dolby_vision is refused, and not transcoded either", what);
    const Limits rest = refusesDolbyVision ? withoutDolbyVision(limits) : limits;
    if (const int others = alsoTurnedAway(rest); others != 0)
        note.stricter("to turn away {} with {} a rule has to turn away what has {} alone, too",
                      what, fmt::join(playExceptionTexts(rest.refused), ", "),
                      fmt::join(playExceptionTexts(others), ", "));
}

} // namespace vornak::tool

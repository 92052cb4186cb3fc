#include "tools/import/oddities.h"

#include "platform/registry_names.h"
#include "tools/import/names.h"
#include "tools/profile/id_names.h"

#include <cstdint>
#include <string_view>

namespace vornak::tool {
namespace {

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

} // namespace

int playExceptions(const PictureLimits &limits)
{
    const int possible = possibleOddities(limits.codec, limits.profiles);
    return (limits.refused & possible) != 0 ? allOddities() : limits.refused;
}

int alsoTurnedAway(const PictureLimits &limits)
{
    const int possible = possibleOddities(limits.codec, limits.profiles);
    return (limits.refused & possible) != 0 ? possible & ~limits.refused : 0;
}

PictureLimits withoutDolbyVision(const PictureLimits &limits)
{
    PictureLimits without = limits;
    without.refused &= ~playExceptionsNamed("dolby_vision");
    return without;
}

bool isForDolbyVision(const PictureLimits &limits)
{
    return (alsoTurnedAway(limits) & ~alsoTurnedAway(withoutDolbyVision(limits))) != 0;
}

int allButDolbyVision()
{
    return allOddities() & ~playExceptionsNamed("dolby_vision");
}

std::vector<PictureLimits> splitByOddities(const PictureLimits &limits)
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
    PictureLimits plain = limits;
    PictureLimits odd = limits;
    plain.profiles = without;
    odd.profiles = with;
    return {plain, odd};
}

} // namespace vornak::tool

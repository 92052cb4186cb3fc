// Codec profiles. There are more than an int has bits, so codecs share bits; but a name has one
// bit, whatever the codec, since ProfileNameToID() is not told which codec is meant.
#include "platform/registry_names.h"

#include "base/fixed_text.h"
#include "platform/name_index.h"

#include <utility>

namespace vornak {
namespace {

constexpr int bit(int number)
{
    // the sign bit would make a set look like no restriction
    if (number < 0 || number > 30) throw "no bit for a profile";
    return 1 << number;
}

constexpr auto s_ProfileNames = std::to_array<ProfileName>({
    {"mpeg2video"_codec, bit(2), "main"},
    {"mpeg2video"_codec, bit(4), "high"},
    {"mpeg2video"_codec, bit(14), "simple"},
    {"mpeg2video"_codec, bit(15), "422"},
    {"mpeg2video"_codec, bit(16), "snr_scalable"},
    {"mpeg2video"_codec, bit(17), "spatially_scalable"},

    {"mjpeg"_codec, bit(0), "baseline"},
    {"mjpeg"_codec, bit(3), "sequential"},
    {"mjpeg"_codec, bit(5), "progressive"},
    {"mjpeg"_codec, bit(6), "lossless"},

    {"mpeg4"_codec, bit(2), "main"},
    {"mpeg4"_codec, bit(14), "simple"},
    {"mpeg4"_codec, bit(15), "advanced_simple"},
    {"mpeg4"_codec, bit(16), "simple_scalable"},
    {"mpeg4"_codec, bit(17), "core"},
    {"mpeg4"_codec, bit(18), "n_bit"},
    {"mpeg4"_codec, bit(19), "scalable_texture"},
    {"mpeg4"_codec, bit(20), "simple_face_animation"},
    {"mpeg4"_codec, bit(21), "basic_animated_texture"},
    {"mpeg4"_codec, bit(22), "hybrid"},
    {"mpeg4"_codec, bit(23), "advanced_real_time"},
    {"mpeg4"_codec, bit(24), "core_scalable"},
    {"mpeg4"_codec, bit(25), "advanced_coding"},
    {"mpeg4"_codec, bit(26), "advanced_core"},
    {"mpeg4"_codec, bit(27), "advanced_scalable_texture"},
    {"mpeg4"_codec, bit(28), "simple_studio"},

    {"h264"_codec, bit(0), "baseline"},
    {"h264"_codec, bit(1), "constrained_baseline"},
    {"h264"_codec, bit(2), "main"},
    {"h264"_codec, bit(3), "extended"},
    {"h264"_codec, bit(4), "high"},
    {"h264"_codec, bit(5), "high10"},
    {"h264"_codec, bit(6), "high422"},
    {"h264"_codec, bit(7), "high444"},
    {"h264"_codec, bit(8), "high10_intra"},
    {"h264"_codec, bit(9), "high422_intra"},
    {"h264"_codec, bit(10), "high444_intra"},
    {"h264"_codec, bit(11), "cavlc444"},
    {"h264"_codec, bit(12), "multiview_high"},
    {"h264"_codec, bit(13), "stereo_high"},

    {"vc1"_codec, bit(2), "main"},
    {"vc1"_codec, bit(14), "simple"},
    {"vc1"_codec, bit(16), "complex"},
    {"vc1"_codec, bit(17), "advanced"},

    {"wmv3"_codec, bit(2), "main"},
    {"wmv3"_codec, bit(14), "simple"},
    {"wmv3"_codec, bit(16), "complex"},
    {"wmv3"_codec, bit(17), "advanced"},

    {"jpeg2000"_codec, bit(20), "codestream0"},
    {"jpeg2000"_codec, bit(21), "codestream1"},
    {"jpeg2000"_codec, bit(22), "codestream_unrestricted"},
    {"jpeg2000"_codec, bit(23), "cinema2k"},
    {"jpeg2000"_codec, bit(24), "cinema4k"},

    {"dnxhd"_codec, bit(20), "dnxhd"},
    {"dnxhd"_codec, bit(21), "dnxhr_lb"},
    {"dnxhd"_codec, bit(22), "dnxhr_sq"},
    {"dnxhd"_codec, bit(23), "dnxhr_hq"},
    {"dnxhd"_codec, bit(24), "dnxhr_hqx"},
    {"dnxhd"_codec, bit(25), "dnxhr_444"},

    {"vp8"_codec, bit(20), "profile0"},
    {"vp8"_codec, bit(21), "profile1"},
    {"vp8"_codec, bit(22), "profile2"},
    {"vp8"_codec, bit(23), "profile3"},

    {"prores"_codec, bit(20), "proxy"},
    {"prores"_codec, bit(21), "lt"},
    {"prores"_codec, bit(22), "standard"},
    {"prores"_codec, bit(23), "hq"},
    {"prores"_codec, bit(24), "4444"},
    {"prores"_codec, bit(25), "4444xq"},

    {"hevc"_codec, bit(2), "main"},
    {"hevc"_codec, bit(18), "main10"},
    {"hevc"_codec, bit(19), "main_still_picture"},
    {"hevc"_codec, bit(20), "rext"},
    {"hevc"_codec, bit(21), "scc"},

    {"vp9"_codec, bit(20), "profile0"},
    {"vp9"_codec, bit(21), "profile1"},
    {"vp9"_codec, bit(22), "profile2"},
    {"vp9"_codec, bit(23), "profile3"},

    {"av1"_codec, bit(2), "main"},
    {"av1"_codec, bit(4), "high"},
    {"av1"_codec, bit(20), "professional"},

    {"vvc"_codec, bit(18), "main10"},
    {"vvc"_codec, bit(20), "main10_444"},

    {"aac"_codec, bit(2), "main"},
    {"aac"_codec, bit(20), "lc"},
    {"aac"_codec, bit(21), "ssr"},
    {"aac"_codec, bit(22), "ltp"},
    {"aac"_codec, bit(23), "he"},
    {"aac"_codec, bit(24), "he_v2"},
    {"aac"_codec, bit(25), "ld"},
    {"aac"_codec, bit(26), "eld"},
    {"aac"_codec, bit(27), "mpeg2_lc"},
    {"aac"_codec, bit(28), "mpeg2_he"},
    {"aac"_codec, bit(29), "xhe"},

    {"dts"_codec, bit(20), "dts"},
    {"dts"_codec, bit(21), "dts_es"},
    {"dts"_codec, bit(22), "dts_96_24"},

    {"aac_latm"_codec, bit(2), "main"},
    {"aac_latm"_codec, bit(20), "lc"},
    {"aac_latm"_codec, bit(21), "ssr"},
    {"aac_latm"_codec, bit(22), "ltp"},
    {"aac_latm"_codec, bit(23), "he"},
    {"aac_latm"_codec, bit(24), "he_v2"},
    {"aac_latm"_codec, bit(25), "ld"},
    {"aac_latm"_codec, bit(26), "eld"},
    {"aac_latm"_codec, bit(27), "mpeg2_lc"},
    {"aac_latm"_codec, bit(28), "mpeg2_he"},
    {"aac_latm"_codec, bit(29), "xhe"},

    {"dtshd"_codec, bit(23), "dts_hd_hra"},
    {"dtshd"_codec, bit(24), "dts_hd_ma"},
    {"dtshd"_codec, bit(25), "dts_express"},
});

constexpr auto s_ProfileAliases = std::to_array<Alias>({
    {"cbp", "constrained_baseline"},
    {"hi10p", "high10"},
    {"hi422p", "high422"},
    {"hi444pp", "high444"},
    {"high444_predictive", "high444"},
    {"422p", "422"},
    {"asp", "advanced_simple"},
    {"sp", "simple"},
    {"range_extensions", "rext"},
    {"low", "lc"},
    {"low_complexity", "lc"},
    {"aac_lc", "lc"},
    {"lc_aac", "lc"},
    {"aac_main", "main"},
    {"aac_he", "he"},
    {"he_aac", "he"},
    {"he_v1", "he"},
    {"he_aac_v1", "he"},
    {"aac_he_v2", "he_v2"},
    {"he_aac_v2", "he_v2"},
    {"aac_ld", "ld"},
    {"aac_eld", "eld"},
    {"xhe_aac", "xhe"},
    {"dts_core", "dts"},
    {"dts_hr", "dts_hd_hra"},
    {"dts_ma", "dts_hd_ma"},
});

// Within a codec each bit stands once; that a name has one bit is the index's condition.
static_assert(std::ranges::adjacent_find(s_ProfileNames, std::ranges::greater_equal{},
                                         [](const ProfileName &row) {
                                             return std::pair(row.codecId, row.bit);
                                         }) == s_ProfileNames.end());
constexpr auto s_NamedBits = [] {
    std::array<RegistryName, s_ProfileNames.size()> rows{};
    std::ranges::transform(s_ProfileNames, rows.begin(), [](const ProfileName &row) {
        return RegistryName{row.name, row.bit};
    });
    return rows;
}();
constexpr NameIndex s_ProfileIndex(s_NamedBits, s_ProfileAliases);

/// The codec's row of the lowest bit in `bits` that it has a profile for, or null.
const ProfileName *findProfile(int bits, int codecId)
{
    for (const ProfileName &row : s_ProfileNames)
        if (row.codecId == codecId && (row.bit & bits) != 0) return &row;
    return nullptr;
}

} // namespace

std::span<const ProfileName> profileNames()
{
    return s_ProfileNames;
}

bool codecHasProfile(int codecId, const char *name)
{
    const RegistryName *named = s_ProfileIndex.find(name);
    if (!named) return false;
    const ProfileName *row = findProfile(named->id, codecId);
    return row && std::string_view(row->name) == named->name;
}

} // namespace vornak

int ProfileNameToID(const char *name, int *bit)
{
    return vornak::findId(vornak::s_ProfileIndex, name, bit);
}

int ProfileIDToName(char *name, int profile, int codecId)
{
    if (!name) return 1;
    const vornak::ProfileName *row = vornak::findProfile(profile, codecId);
    if (!row) return 1;
    return vornak::FixedText(name, VORNAK_NAME_SIZE).append(row->name) ? 0 : 1;
}

// Codec profiles. There are more than an int has bits, so codecs share bits; but a name has one
// bit, whatever the codec, since ProfileNameToID() is not told which codec is meant.
#include "platform/registry_names.h"

#include "base/fixed_text.h"
#include "platform/codec_ids.h"
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
    {kMpeg2Video, bit(2), "main"},
    {kMpeg2Video, bit(4), "high"},
    {kMpeg2Video, bit(14), "simple"},
    {kMpeg2Video, bit(15), "422"},
    {kMpeg2Video, bit(16), "snr_scalable"},
    {kMpeg2Video, bit(17), "spatially_scalable"},

    {kMjpeg, bit(0), "baseline"},
    {kMjpeg, bit(3), "sequential"},
    {kMjpeg, bit(5), "progressive"},
    {kMjpeg, bit(6), "lossless"},

    {kMpeg4, bit(2), "main"},
    {kMpeg4, bit(14), "simple"},
    {kMpeg4, bit(15), "advanced_simple"},
    {kMpeg4, bit(16), "simple_scalable"},
    {kMpeg4, bit(17), "core"},
    {kMpeg4, bit(18), "n_bit"},
    {kMpeg4, bit(19), "scalable_texture"},
    {kMpeg4, bit(20), "simple_face_animation"},
    {kMpeg4, bit(21), "basic_animated_texture"},
    {kMpeg4, bit(22), "hybrid"},
    {kMpeg4, bit(23), "advanced_real_time"},
    {kMpeg4, bit(24), "core_scalable"},
    {kMpeg4, bit(25), "advanced_coding"},
    {kMpeg4, bit(26), "advanced_core"},
    {kMpeg4, bit(27), "advanced_scalable_texture"},
    {kMpeg4, bit(28), "simple_studio"},

    {kH264, bit(0), "baseline"},
    {kH264, bit(1), "constrained_baseline"},
    {kH264, bit(2), "main"},
    {kH264, bit(3), "extended"},
    {kH264, bit(4), "high"},
    {kH264, bit(5), "high10"},
    {kH264, bit(6), "high422"},
    {kH264, bit(7), "high444"},
    {kH264, bit(8), "high10_intra"},
    {kH264, bit(9), "high422_intra"},
    {kH264, bit(10), "high444_intra"},
    {kH264, bit(11), "cavlc444"},
    {kH264, bit(12), "multiview_high"},
    {kH264, bit(13), "stereo_high"},

    {kVc1, bit(2), "main"},
    {kVc1, bit(14), "simple"},
    {kVc1, bit(16), "complex"},
    {kVc1, bit(17), "advanced"},

    {kWmv3, bit(2), "main"},
    {kWmv3, bit(14), "simple"},
    {kWmv3, bit(16), "complex"},
    {kWmv3, bit(17), "advanced"},

    {kJpeg2000, bit(20), "codestream0"},
    {kJpeg2000, bit(21), "codestream1"},
    {kJpeg2000, bit(22), "codestream_unrestricted"},
    {kJpeg2000, bit(23), "cinema2k"},
    {kJpeg2000, bit(24), "cinema4k"},

    {kDnxhd, bit(20), "dnxhd"},
    {kDnxhd, bit(21), "dnxhr_lb"},
    {kDnxhd, bit(22), "dnxhr_sq"},
    {kDnxhd, bit(23), "dnxhr_hq"},
    {kDnxhd, bit(24), "dnxhr_hqx"},
    {kDnxhd, bit(25), "dnxhr_444"},

    {kVp8, bit(20), "profile0"},
    {kVp8, bit(21), "profile1"},
    {kVp8, bit(22), "profile2"},
    {kVp8, bit(23), "profile3"},

    {kProres, bit(20), "proxy"},
    {kProres, bit(21), "lt"},
    {kProres, bit(22), "standard"},
    {kProres, bit(23), "hq"},
    {kProres, bit(24), "4444"},
    {kProres, bit(25), "4444xq"},

    {kHevc, bit(2), "main"},
    {kHevc, bit(18), "main10"},
    {kHevc, bit(19), "main_still_picture"},
    {kHevc, bit(20), "rext"},
    {kHevc, bit(21), "scc"},

    {kVp9, bit(20), "profile0"},
    {kVp9, bit(21), "profile1"},
    {kVp9, bit(22), "profile2"},
    {kVp9, bit(23), "profile3"},

    {kAv1, bit(2), "main"},
    {kAv1, bit(4), "high"},
    {kAv1, bit(20), "professional"},

    {kVvc, bit(18), "main10"},
    {kVvc, bit(20), "main10_444"},

    {kAac, bit(2), "main"},
    {kAac, bit(20), "lc"},
    {kAac, bit(21), "ssr"},
    {kAac, bit(22), "ltp"},
    {kAac, bit(23), "he"},
    {kAac, bit(24), "he_v2"},
    {kAac, bit(25), "ld"},
    {kAac, bit(26), "eld"},
    {kAac, bit(27), "mpeg2_lc"},
    {kAac, bit(28), "mpeg2_he"},
    {kAac, bit(29), "xhe"},

    {kDts, bit(20), "dts"},
    {kDts, bit(21), "dts_es"},
    {kDts, bit(22), "dts_96_24"},

    {kAacLatm, bit(2), "main"},
    {kAacLatm, bit(20), "lc"},
    {kAacLatm, bit(21), "ssr"},
    {kAacLatm, bit(22), "ltp"},
    {kAacLatm, bit(23), "he"},
    {kAacLatm, bit(24), "he_v2"},
    {kAacLatm, bit(25), "ld"},
    {kAacLatm, bit(26), "eld"},
    {kAacLatm, bit(27), "mpeg2_lc"},
    {kAacLatm, bit(28), "mpeg2_he"},
    {kAacLatm, bit(29), "xhe"},

    {kDtsHd, bit(23), "dts_hd_hra"},
    {kDtsHd, bit(24), "dts_hd_ma"},
    {kDtsHd, bit(25), "dts_express"},
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

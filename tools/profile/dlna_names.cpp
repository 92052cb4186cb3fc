#include "tools/profile/dlna_names.h"

#include "base/ascii_case.h"
#include "base/media_ids.h"
#include "base/rule_tables.h"
#include "include/vornak_host.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include <algorithm>
#include <bit>
#include <fmt/format.h>
#include <iterator>
#include <limits>
#include <map>
#include <string_view>
#include <unordered_map>

namespace vornak::tool {
namespace {

// The sounds that may stand in a video's name.
constexpr std::string_view kSounds =
    "{AAC_MULT5,AAC,AC3,EAC3,MPEG1_L3,MPEG1_L2,MPEG2_L2,AAC_520,AAC_940,AAC_LTP,AAC_LTP_520,"
    "AAC_LTP_MULT5,AAC_LTP_MULT7,HEAAC,HEAAC_L2,HEAAC_L3,HEAAC_L4,HEAAC_350,HEAAC_MULT5,HEAACv2,"
    "HEAACv2_L2,HEAACv2_L3,HEAACv2_L4,HEAACv2_MULT5,ATRAC3plus,BSAC,BSAC_MULT5,AMR,AMR_WBplus,"
    "LPCM,DTS,DTSHD,DTSHD_HRA,DTSHD_MA}";
constexpr std::string_view kPackets =
    "{_ISO,_T,}"; // 188 bytes, or 192 with a time stamp or without

// The families of names. Each "{a,b}" stands for either, "$S" for a sound, "$P" for a packet. A row
// without sounds has them in the name.
constexpr struct {
    std::string_view names, containers, pictures, sounds;
} s_Families[] = {
    // names, containers, pictures, sounds
    {"MP3{,X}", "mp3", "", "mp3"},
    {"LPCM{,_low}", "", "", "pcm"},
    {"{AC3,EAC3}", "ac3|eac3", "", ""},
    {"AMR_{3GPP,WBplus}", "mp4|amr", "", "amr_nb|amr_wb"},
    {"ATRAC3{,plus}", "", "", "atrac3|atrac3p"},
    {"{AAC,HEAAC_L2,HEAAC_L3,AAC_MULT5,HEAAC_MULT5,HEAACv2_L2,HEAACv2_L3,HEAACv2_L4,"
     "HEAACv2_MULT5}_ADTS{,_320}",
     "adts", "", "aac"},
    {"{AAC,AAC_MULT5,AAC_LTP,AAC_LTP_MULT5,AAC_LTP_MULT7,HEAAC_L2,HEAAC_L3,HEAAC_L4,HEAAC_MULT5,"
     "HEAAC_MULT7,HEAACv2_L2,HEAACv2_L3,HEAACv2_L4,HEAACv2_MULT5}_ISO{,_320}",
     "mp4", "", "aac"},
    {"HEAACv2_{L2,L3,L4,MULT5}{,_320}", "mp4|adts", "", "aac"},
    {"BSAC{,_MULT5}_ISO", "mp4", "", ""},
    {"WMA{FULL,BASE}", "asf", "", "wmav1|wmav2"},
    {"WMAPRO", "asf", "", "wmapro"},
    {"WMALSL{,_MULT5}", "asf", "", "wmalossless"},
    {"MPEG1", "ps", "mpeg1video", "mp1|mp2"},
    {"MPEG_PS_{PAL,NTSC}", "ps", "mpeg2video", "mp1|mp2|ac3|dts|pcm"},
    {"MPEG_{PS,ES}_{PAL,NTSC}_XAC3", "ps|mpegvideo", "mpeg2video", "ac3"},
    {"MPEG_ES_{PAL,NTSC}", "mpegvideo", "mpeg2video", "mp1|mp2|ac3|pcm"},
    {"MPEG_PS_{SD,HD}_{DTS,DTSHD,DTSHD_HRA,DTSHD_MA}", "ps", "mpeg2video", ""},
    {"MPEG_TS_{SD,HD}_{EU,NA,KO}$P", "ts", "mpeg2video", "mp1|mp2|ac3"},
    {"MPEG_TS_{SD,HD}_{NA,KO}_XAC3$P", "ts", "mpeg2video", "ac3"},
    {"MPEG_TS_{SD,HD,HD_X}_{50,60}_L2$P", "ts", "mpeg2video", "mp1|mp2"},
    {"MPEG_TS_{SD,HD,HD_X}_{50,60}_AC3$P", "ts", "mpeg2video", "ac3"},
    {"MPEG_TS_MP_LL_AAC$P", "ts", "mpeg2video", "aac"},
    {"MPEG_TS_JP$P", "ts", "mpeg2video", "aac"},
    {"MPEG_TS_{SD,HD}_{DTS,DTSHD,DTSHD_HRA,DTSHD_MA}$P", "ts", "mpeg2video", ""},
    {"AVC_TS_{MP_HD,MP_SD,HP_HD,HP_SD,BL_CIF15,BL_CIF30,BL_L12_CIF15,BL_L2_CIF30,BL_L3_SD}_$S$P",
     "ts", "h264", ""},
    {"AVC_TS_{EU,NA,KO,HD_EU,HD_NA}$P", "ts", "h264", "mp1|mp2|mp3|aac|ac3|eac3"},
    {"AVC_TS_JP_AAC$P", "ts", "h264", "aac"},
    {"AVC_TS_{SD,HD,HD_X}_{24,50,60}_{AC3,LPCM,DTS}$P", "ts", "h264", ""},
    {"AVC_TS_HD_{DTS,DTSHD,DTSHD_HRA,DTSHD_MA}$P", "ts", "h264", ""},
    {"AVC_MP4_{MP_SD,MP_HD_720p,MP_HD,MP_HD_1080i,MP_L3,MP_L31,MP_L4,HP_HD,HP_SD,HP_L3,EXTP_L3,"
     "BL_CIF15,BL_CIF30,BL_CIF15_520,BL_L12_CIF15,BL_L1B_QCIF15,BL_L2_CIF30,BL_L3_SD,BL_L3L_SD,"
     "BL_L31_HD,BL_L32_HD}_$S",
     "mp4", "h264", ""},
    {"AVC_3GPP_BL_{QCIF15,CIF15,CIF30}_$S", "mp4", "h264", ""},
    {"AVC_MKV_{MP,HP}_{HD,SD}_$S", "", "h264", ""}, // too new to be proposed
    {"MPEG4_P2_MP4_{ASP,SP,SP_VGA,SP_L2,SP_L5,SP_L6,ASP_L4_SO,ASP_L5_SO,NDSD,NDHD}_$S", "mp4",
     "mpeg4", ""},
    {"MPEG4_P2_MP4_{SP,ASP_L4_SO,ASP_L5_SO}_G726", "mp4", "mpeg4", "adpcm_g726"},
    {"MPEG4_P2_3GPP_SP_L0B_{AAC,AMR}", "mp4", "mpeg4", ""},
    {"MPEG4_P2_TS_{ASP,SP,CO}_{AAC,AC3,MPEG1_L3,MPEG2_L2}$P", "ts", "mpeg4", ""},
    {"MPEG4_P2_ASF_{SP,ASP_L4_SO,ASP_L5_SO}_G726", "asf", "mpeg4", "adpcm_g726"},
    {"MPEG4_H263_MP4_P0_L10_AAC{,_LTP}", "mp4", "h263", ""},
    {"MPEG4_H263_3GPP_{P0_L10_AMR_WBplus,P3_L10_AMR}", "mp4", "h263", ""},
    {"{WMVMED,WMVHIGH}_FULL", "asf", "wmv3", "wmav1|wmav2"},
    {"{WMVMED,WMVHM,WMVSPLL,WMVSPML}_BASE", "asf", "wmv3", "wmav1|wmav2"},
    {"{WMVMED,WMVHIGH}_PRO", "asf", "wmv3", "wmapro"},
    {"WMVSPML_MP3", "asf", "wmv3", "mp3"},
    {"VC1_ASF_AP_L{1,2,3}_WMA", "asf", "vc1", "wmav1|wmav2|wmapro"},
    {"VC1_TS_AP_L{1,2}_AC3$P", "ts", "vc1", ""},
    {"VC1_TS_HD_{DTS,DTSHD,DTSHD_HRA,DTSHD_MA}$P", "ts", "vc1", ""},
};

// The first of these that a name has in it says its sound.
constexpr struct {
    std::string_view word, sounds;
} s_Sounds[] = {
    {"MPEG1_L3", "mp3"}, {"MPEG1_L2", "mp1|mp2"}, {"MPEG2_L2", "mp1|mp2"},  {"AAC", "aac|aac_latm"},
    {"EAC3", "eac3"},    {"AC3", "ac3"},          {"AMR", "amr_nb|amr_wb"}, {"ATRAC3", "atrac3p"},
    {"LPCM", "pcm"},     {"DTS", "dts|dtshd"},
};

// The first of these that a name has in it says its picture's profile. What keeps to a lesser one
// keeps to the better ones too.
constexpr struct {
    std::string_view family, word, profiles;
} s_Profiles[] = {
    {"AVC_", "_HP_", "high|main|constrained_baseline"},
    {"AVC_", "_MP_", "main|constrained_baseline"},
    {"AVC_", "_BL_", "baseline|constrained_baseline"},
    {"AVC_", "_EXTP_", "extended"},
    {"MPEG4_P2_", "_ASP_", "advanced_simple|simple"},
    {"MPEG4_P2_", "_SP_", "simple"},
};

// The same of its sound.
constexpr struct {
    std::string_view word, profiles;
} s_SoundProfiles[] = {
    {"HEAACv2", "he_v2|he|lc"},
    {"HEAAC", "he|lc"},
    {"AAC_LTP", "ltp|lc"},
    {"AAC", "lc"},
};

// The first of these that a name has in it says how large its picture may be.
constexpr struct {
    std::string_view word;
    int width, height;
} s_Sizes[] = {
    {"_SD_", 720, 576},       {"_HD_720p_", 1280, 720}, {"_L31_HD_", 1280, 720},
    {"_L32_HD_", 1280, 1024}, {"_HD_", 1920, 1152},
};

constexpr struct {
    std::string_view types, containers; ///< of none named, any
} s_MimeTypes[] = {
    {"audio/mpeg|audio/mp3|audio/x-mp3", "mp3|adts|latm|mp4|ts|ps"},
    {"audio/mp4|audio/m4a|audio/x-m4a|audio/x-alac|audio/alac|audio/3gpp|audio/3gpp2",
     "mp4|adts|latm|caf"},
    {"audio/aac|audio/x-aac|audio/aacp|audio/mp4a-latm|audio/vnd.dlna.adts", "adts|latm|mp4|ts"},
    {"audio/ac3|audio/eac3|audio/vnd.dolby.dd-raw|audio/vnd.dolby.mlp", "ac3|eac3|truehd|mp4|ts"},
    {"audio/vnd.dts|audio/vnd.dts.hd|audio/x-dts", "dts|wav|mp4|ts"},
    {"audio/flac|audio/x-flac", "flac|ogg"},
    {"audio/ogg|audio/x-ogg|audio/opus|audio/vorbis|audio/speex|audio/x-speex|video/ogg|"
     "application/ogg",
     "ogg|matroska"},
    {"audio/webm|audio/x-matroska|video/webm|video/x-matroska|video/x-mkv|video/mkv|video/matroska",
     "matroska"},
    {"audio/wav|audio/x-wav|audio/wave|audio/vnd.wave|audio/x-w64", "wav|w64"},
    {"audio/l8|audio/l16|audio/l20|audio/l24", ""},
    {"audio/aiff|audio/x-aiff", "aiff"},
    {"audio/basic", "au"},
    {"audio/x-caf", "caf"},
    {"audio/x-ms-wma|audio/wma|video/x-ms-wmv|video/x-ms-asf|video/x-ms-wm|video/wmv|"
     "application/vnd.ms-asf",
     "asf"},
    {"audio/x-wavpack", "wavpack"},
    {"audio/x-tta", "tta"},
    {"audio/x-ape|audio/x-monkeys-audio|audio/ape", "ape"},
    {"audio/x-musepack|audio/musepack", "mpc"},
    {"audio/x-dsf|audio/x-dff|audio/dsf|audio/dff|audio/dsd|audio/x-dsd", "dsf|dff"},
    {"audio/amr|audio/amr-wb|audio/amr-wb+", "amr|mp4"},
    {"audio/x-realaudio|audio/x-pn-realaudio|audio/vnd.rn-realaudio|video/vnd.rn-realvideo|"
     "video/x-pn-realvideo|application/vnd.rn-realmedia|application/vnd.rn-realmedia-vbr",
     "rm"},
    {"video/mpeg|video/mpeg2|video/x-mpeg|video/mp2p", "ts|ps|mpegvideo"},
    {"video/mp2t|video/mpegts|video/vnd.dlna.mpeg-tts", "ts"},
    {"video/mp4|video/x-m4v|video/m4v|video/quicktime|video/3gpp|video/3gpp2", "mp4"},
    {"video/avi|video/x-msvideo|video/msvideo|video/vnd.avi", "avi"},
    {"video/divx|video/x-divx|video/xvid|video/x-xvid", "avi|matroska|mp4"},
    {"video/x-flv|video/flv|video/x-f4v", "flv|mp4"},
    {"video/x-ivf", "ivf"},
    {"video/x-dv|video/dv", "dv|avi"},
    {"video/mxf|application/mxf", "mxf"},
    {"audio/x-sony-oma|audio/mpegurl|video/mp4v-es|video/h264|video/h265|video/vc1|"
     "application/octet-stream|application/x-mpegurl|application/vnd.apple.mpegurl|"
     "application/dash+xml",
     ""},
};

/// A family's names, the first alternatives first.
void expand(std::string pattern, std::vector<std::string> &names)
{
    if (const std::size_t at = pattern.find('$'); at != std::string::npos)
        pattern.replace(at, 2, pattern[at + 1] == 'S' ? kSounds : kPackets);
    if (pattern.find('$') != std::string::npos) return expand(std::move(pattern), names);
    const std::size_t open = pattern.find('{');
    if (open == std::string::npos) return names.push_back(std::move(pattern));
    const std::size_t close = pattern.find('}');
    for (std::size_t from = open + 1; from <= close;) {
        const std::size_t to = std::min(pattern.find(',', from), close);
        expand(pattern.substr(0, open) + pattern.substr(from, to - from) +
                   pattern.substr(close + 1),
               names);
        from = to + 1;
    }
}

/// The ids of containers or codecs in a list of names. Of some, one name stands for several.
std::vector<int> idsOf(std::string_view list, int (*lookup)(const char *name, int *id))
{
    constexpr struct {
        std::string_view name, names;
    } s_Groups[] = {{"ts", "mpegts|mpegts_m2ts|mpegts_204"},
                    {"ps", "mpegps|mpegps_dvd|mpegps_mpeg1"},
                    {"pcm", "pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be|pcm_dvd|pcm_bluray|pcm_u8"}};
    std::vector<int> ids;
    for (const std::string &name : splitList(list)) {
        const auto *const group =
            std::ranges::find(s_Groups, name, [](const auto &row) { return row.name; });
        int id = 0;
        if (group != std::end(s_Groups)) {
            const std::vector<int> more = idsOf(group->names, lookup);
            ids.insert(ids.end(), more.begin(), more.end());
        } else if (lookup(name.c_str(), &id) == 0) {
            ids.push_back(id);
        }
    }
    return ids;
}

int containerNameToId(const char *name, int *id)
{
    return ContainerFormatNameToID(name, nullptr, id);
}

std::string_view soundsIn(std::string_view name)
{
    for (const auto &row : s_Sounds)
        if (name.find(row.word) != std::string_view::npos) return row.sounds;
    return {};
}

/// What the words in a name say of its picture and its sound.
void readName(DlnaName &name)
{
    const auto hasWord = [&](const auto &row) {
        return name.name.find(row.word) != std::string::npos;
    };
    for (const auto &row : s_Profiles) {
        if (name.profiles != 0 || !name.name.starts_with(row.family) || !hasWord(row)) continue;
        name.bestProfile = profilesNamed(row.profiles.substr(0, row.profiles.find('|')));
        name.profiles = profilesNamed(row.profiles);
    }
    if (const auto *const sound = std::ranges::find_if(s_SoundProfiles, hasWord);
        sound != std::end(s_SoundProfiles))
        name.soundProfiles = profilesNamed(sound->profiles);
    const auto *const size = std::ranges::find_if(s_Sizes, hasWord);
    if (size == std::end(s_Sizes)) return;
    name.width = size->width;
    name.height = size->height;
}

const std::vector<DlnaName> &allNames()
{
    static const std::vector<DlnaName> s_all = [] {
        std::vector<DlnaName> all;
        for (const auto &family : s_Families) {
            const std::vector<int> containers = idsOf(family.containers, containerNameToId);
            const std::vector<int> pictures = idsOf(family.pictures, CodecNameToID);
            std::vector<std::string> names;
            expand(std::string(family.names), names);
            for (std::string &name : names) {
                const std::string_view sounds =
                    family.sounds.empty() ? soundsIn(name) : family.sounds;
                all.push_back(
                    {std::move(name), containers, pictures, idsOf(sounds, CodecNameToID)});
                readName(all.back());
            }
        }
        return all;
    }();
    return s_all;
}

std::vector<const DlnaName *> namesFor(const DlnaUse &use)
{
    std::vector<const DlnaName *> names;
    for (const DlnaName &each : allNames()) {
        const bool fitsPicture = use.picture < 0
                                     ? each.pictures.empty()
                                     : !each.pictures.empty() && allows(each.pictures, use.picture);
        if (fitsPicture && !each.containers.empty() && !each.sounds.empty() &&
            allows(each.containers, containerPart(use.formatId)) && allows(each.sounds, use.sound))
            names.push_back(&each);
    }
    return names;
}

constexpr int kUnfit = std::numeric_limits<int>::max();

/// Leaves the names of the least rank. False: they differ in a property, and none fits.
template <class Rank>
bool keepBest(std::vector<const DlnaName *> &names, int DlnaName::*property, Rank rank)
{
    if (std::ranges::none_of(names, [&](const DlnaName *name) { return name->*property != 0; }))
        return true;
    int best = kUnfit;
    for (const DlnaName *name : names) best = std::min(best, rank(*name));
    std::erase_if(names, [&](const DlnaName *name) { return rank(*name) > best; });
    return best != kUnfit;
}

/// "AVC_MP4_*" for "AVC_MP4_MP_SD_AAC"
std::string familyOf(const std::string &name)
{
    return name.substr(0, name.find('_', name.find('_') + 1) + 1) + "*";
}

std::string searchName(const DlnaUse &use)
{
    std::vector<const DlnaName *> names = namesFor(use);
    if (names.empty()) return {};
    std::string family = familyOf(names.front()->name);
    const auto byProfile = [&](const DlnaName &name) { // the better one takes more of them
        return (name.bestProfile & use.profiles) == 0
                   ? kUnfit
                   : -std::popcount(static_cast<unsigned>(name.profiles));
    };
    // the least that takes all that the rule takes, or as much of it as there is
    const auto bySoundProfile = [&](const DlnaName &name) {
        const auto count = [](int bits) { return std::popcount(static_cast<unsigned>(bits)); };
        const int common = name.soundProfiles & use.soundProfiles;
        if (name.soundProfiles != 0 && common == 0) return kUnfit;
        return count(name.soundProfiles) - 8 * count(common);
    };
    const auto bySize = [&](const DlnaName &name) {
        const bool holds =
            use.width > 0 && use.height > 0 && use.width <= name.width && use.height <= name.height;
        return holds ? name.width : kUnfit;
    };
    if (use.soundProfiles > 0 && !keepBest(names, &DlnaName::soundProfiles, bySoundProfile))
        return {};
    if (!keepBest(names, &DlnaName::profiles, byProfile) ||
        !keepBest(names, &DlnaName::width, bySize))
        return family;
    const auto fitsChannels = [&](const DlnaName *name) {
        return use.channels <= 0 ||
               (name->name.find("MULT") != std::string::npos) == (use.channels > 2);
    };
    const auto chosen = std::ranges::find_if(names, fitsChannels);
    return (chosen == names.end() ? names.front() : *chosen)->name;
}

/// The containers, without subtypes, that each MIME type is for; none named: any.
const std::unordered_map<std::string, std::vector<int>> &containersByMimeType()
{
    static const auto s_containers = [] {
        std::unordered_map<std::string, std::vector<int>> containers;
        for (const auto &row : s_MimeTypes)
            for (const std::string &type : splitList(row.types))
                containers[type] = idsOf(row.containers, containerNameToId);
        return containers;
    }();
    return s_containers;
}

} // namespace

const DlnaName *findDlnaName(std::string_view name)
{
    static const std::unordered_map<std::string_view, const DlnaName *> s_byName = [] {
        std::unordered_map<std::string_view, const DlnaName *> byName;
        for (const DlnaName &each : allNames()) byName.emplace(each.name, &each);
        return byName;
    }();
    const auto found = s_byName.find(name);
    return found == s_byName.end() ? nullptr : found->second;
}

std::vector<std::string> dlnaNames()
{
    std::vector<std::string> names;
    for (const DlnaName &each : allNames()) names.push_back(each.name);
    return names;
}

bool allows(const std::vector<int> &ids, int id)
{
    return ids.empty() || std::ranges::find(ids, id) != ids.end();
}

const std::string &dlnaNameFor(const DlnaUse &use)
{
    static std::map<DlnaUse, std::string> s_found;
    const auto [known, isNew] = s_found.try_emplace(use);
    if (isNew) known->second = searchName(use);
    return known->second;
}

const std::vector<std::string> &mimeTypes()
{
    static const std::vector<std::string> s_types = [] {
        std::vector<std::string> types;
        for (const auto &row : s_MimeTypes)
            std::ranges::move(splitList(row.types), std::back_inserter(types));
        return types;
    }();
    return s_types;
}

std::string bareMimeType(std::string_view mime)
{
    return lowerCase(mime.substr(0, mime.find_first_of("; ")));
}

bool isKnownMimeType(std::string_view mime)
{
    return containersByMimeType().contains(bareMimeType(mime));
}

std::string mimeContradiction(std::string_view mime, int formatId, bool isMusic)
{
    const std::string bare = bareMimeType(mime);
    const auto known = containersByMimeType().find(bare);
    if (formatId == kAnyContainer || known == containersByMimeType().end()) return {};
    if (!allows(known->second, containerPart(formatId)))
        return fmt::format("is for {} and not for {}", containerText(known->second.front()),
                           containerText(containerPart(formatId)));
    const std::string usual = mimeOf(formatId, isMusic);
    if (isMusic && bare.starts_with("video/") && usual.starts_with("audio/"))
        return "is for videos";
    if (!isMusic && bare.starts_with("audio/") && usual.starts_with("video/"))
        return "is for music";
    return {};
}

} // namespace vornak::tool

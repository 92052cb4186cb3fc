#include "tools/profile/media_names.h"

#include "base/media_ids.h"
#include "base/rule_tables.h"
#include "tools/profile/codec_list.h"

#include <algorithm>

namespace vornak::tool {
namespace {

constexpr CodecList kMp4Codecs = "h264|hevc|av1|vp9|vvc|mpeg4|mpeg2video|mpeg1video|mjpeg|"
                                 "aac|mp3|mp2|mp1|ac3|eac3|alac|flac|opus|dts|dtshd|vorbis"_codecs;
constexpr CodecList k3gpCodecs = "h264|mpeg4|h263|aac|amr_nb|amr_wb"_codecs;
constexpr CodecList kM4vCodecs = "h264|mpeg4|aac|alac|ac3"_codecs;
constexpr CodecList kMp4SoundCodecs = "aac|alac"_codecs;
constexpr CodecList kQuickTimeCodecs =
    "h264|hevc|mpeg4|mpeg2video|mjpeg|prores|dnxhd|svq1|svq3|qtrle|rpza|cinepak|dvvideo|h263|"
    "aac|mp3|ac3|eac3|alac|pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be|pcm_s32le|pcm_s32be|pcm_u8|"
    "pcm_f32le|pcm_f32be|adpcm_ima_qt|amr_nb|amr_wb"_codecs;
constexpr CodecList kTransportCodecs =
    "h264|hevc|vvc|mpeg1video|mpeg2video|mpeg4|"
    "aac|aac_latm|mp3|mp2|mp1|ac3|eac3|dts|dtshd|truehd|opus"_codecs;
constexpr CodecList kProgramCodecs =
    "mpeg1video|mpeg2video|h264|mp1|mp2|mp3|ac3|dts|pcm_dvd"_codecs;

struct MediaNames {
    int formatId;
    std::string_view extension;
    std::string_view demuxers, muxers;      ///< separated by "|"
    std::string_view option = {};           ///< empty: ffmpeg doesn't make it
    std::string_view mime = {}, music = {}; ///< MIME types; an empty one of music: the other
    CodecList codecs = {};                  ///< usual in it
};

// In the order in which they are preferred for making: what can be sent while it is made, what
// holds much, what many know.
constexpr MediaNames s_MediaNames[] = {
    // container, extension, demuxers, muxers, option, MIME types, codecs
    {"mpegts"_container, "ts", "mpegts", "mpegts", "-f mpegts", "video/mpeg", "", kTransportCodecs},
    {"mpegts_m2ts"_container, "ts", "", "", "", "video/vnd.dlna.mpeg-tts", "", kTransportCodecs},
    {"mp4/isom"_container, "mp4", "", "mp4", "-f mp4", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4/mp42"_container, "mp4", "", "", "-f mp4 -brand mp42", "video/mp4", "audio/mp4",
     kMp4Codecs},
    {"mp4/mp41"_container, "mp4", "", "", "-f mp4 -brand mp41", "video/mp4", "audio/mp4",
     kMp4Codecs},
    {"mp4"_container, "mp4", "mov,mp4,m4a,3gp,3g2,mj2", "", "-f mp4", "video/mp4", "audio/mp4",
     kMp4Codecs},
    // the last muxer is the appliance's name for Matroska
    {"matroska"_container, "mkv", "matroska,webm", "matroska|mkvtimestamp_v2", "-f matroska",
     "video/x-matroska", "audio/x-matroska", "any"_codecs},
    {"matroska/webm"_container, "webm", "", "webm", "-f webm", "video/webm", "audio/webm",
     "vp8|vp9|av1|vorbis|opus"_codecs},
    {"mpegps"_container, "mpg", "mpeg", "dvd|mpeg|svcd|vcd|vob", "-f vob", "video/mpeg", "",
     kProgramCodecs},
    {"mpegps_dvd"_container, "mpg", "", "", "", "video/mpeg", "", kProgramCodecs},
    {"mpegps_mpeg1"_container, "mpg", "", "", "", "video/mpeg", "",
     "mpeg1video|mp1|mp2|mp3"_codecs},
    {"mp4/m4v"_container, "m4v", "", "ipod", "-f ipod", "video/mp4", "", kM4vCodecs},
    {"mp4/3gp"_container, "3gp", "", "3gp", "-f 3gp", "video/3gpp", "audio/3gpp", k3gpCodecs},
    {"mp4/3g2"_container, "3g2", "", "3g2", "-f 3g2", "video/3gpp2", "audio/3gpp2", k3gpCodecs},
    {"mp4/qt"_container, "mov", "", "mov", "-f mov", "video/quicktime", "", kQuickTimeCodecs},
    {"mp4/mov"_container, "mov", "", "", "", "video/quicktime", "", kQuickTimeCodecs},
    {"mp4/msnv"_container, "mp4", "", "psp", "-f psp", "video/mp4", "", "h264|mpeg4|aac"_codecs},
    {"avi"_container, "avi", "avi", "avi", "-f avi", "video/x-msvideo", "",
     "mpeg4|msmpeg4v1|msmpeg4v2|msmpeg4v3|h264|mjpeg|mpeg1video|mpeg2video|dvvideo|huffyuv|ffv1|"
     "cinepak|rawvideo|mp3|mp2|ac3|dts|aac|pcm_s16le|pcm_u8|pcm_s24le|adpcm_ms|adpcm_ima_wav|"
     "wmav1|wmav2"_codecs},
    {"asf"_container, "asf", "asf|asf_o", "asf|asf_stream", "-f asf", "video/x-ms-wmv",
     "audio/x-ms-wma",
     "wmv1|wmv2|wmv3|vc1|msmpeg4v2|msmpeg4v3|wmav1|wmav2|wmapro|wmalossless|wmavoice|mp3"_codecs},
    {"flv"_container, "flv", "flv|live_flv", "flv", "-f flv", "video/x-flv", "",
     "flv1|h264|vp6f|vp6a|mp3|aac|speex|nellymoser"_codecs},
    {"mp3"_container, "mp3", "mp3", "mp2|mp3", "-f mp3", "audio/mpeg", "", "mp3|mp2"_codecs},
    {"flac"_container, "flac", "flac", "flac", "-f flac", "audio/flac", "", "flac"_codecs},
    {"adts"_container, "aac", "aac", "adts", "-f adts", "audio/vnd.dlna.adts", "", "aac"_codecs},
    {"mp4/m4a"_container, "m4a", "", "ipod", "-f ipod", "audio/mp4", "", kMp4SoundCodecs},
    {"ogg"_container, "ogg", "ogg", "oga|ogg|ogv|opus|spx", "-f ogg", "video/ogg", "audio/ogg",
     "theora|vp8|vorbis|opus|flac|speex"_codecs},
    {"wav"_container, "wav", "wav", "wav", "-f wav", "audio/wav", "",
     "pcm_s16le|pcm_s24le|pcm_s32le|pcm_u8|pcm_f32le|pcm_f64le|pcm_mulaw|pcm_alaw|adpcm_ms|"
     "adpcm_ima_wav"_codecs},
    {"ac3"_container, "ac3", "ac3", "ac3", "-f ac3", "audio/vnd.dolby.dd-raw", "", "ac3"_codecs},
    {"eac3"_container, "eac3", "eac3", "eac3", "-f eac3", "audio/eac3", "", "eac3"_codecs},
    {"dts"_container, "dts", "dts|dtshd", "dts", "-f dts", "audio/vnd.dts", "", "dts|dtshd"_codecs},
    {"truehd"_container, "thd", "truehd", "truehd", "-f truehd", "audio/vnd.dolby.mlp", "",
     "truehd|mlp"_codecs},
    {"aiff"_container, "aiff", "aiff", "aiff", "-f aiff", "audio/aiff", "",
     "pcm_s16be|pcm_s24be|pcm_s32be|pcm_s8"_codecs},
    {"au"_container, "au", "au", "au", "-f au", "audio/basic", "",
     "pcm_s16be|pcm_mulaw|pcm_alaw|pcm_s24be"_codecs},
    {"caf"_container, "caf", "caf", "caf", "-f caf", "audio/x-caf", "",
     "alac|aac|pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be"_codecs},
    {"w64"_container, "w64", "w64", "w64", "-f w64", "audio/x-w64", "",
     "pcm_s16le|pcm_s24le|pcm_s32le|pcm_f32le"_codecs},
    {"wavpack"_container, "wv", "wv", "wv", "-f wv", "audio/x-wavpack", "", "wavpack"_codecs},
    {"tta"_container, "tta", "tta", "tta", "-f tta", "audio/x-tta", "", "tta"_codecs},
    {"latm"_container, "latm", "loas", "latm", "-f latm", "audio/mp4a-latm", "",
     "aac|aac_latm"_codecs},
    {"mpegvideo"_container, "m2v", "mpegvideo", "mpeg1video|mpeg2video", "-f mpeg2video",
     "video/mpeg", "", "mpeg1video|mpeg2video"_codecs},
    {"amr"_container, "amr", "amr|amrnb|amrwb", "amr", "", "audio/amr", "", "amr_nb|amr_wb"_codecs},
    {"ape"_container, "ape", "ape", "", "", "audio/x-ape", "", "ape"_codecs},
    {"mpc"_container, "mpc", "mpc|mpc8", "", "", "audio/x-musepack", "",
     "musepack7|musepack8"_codecs},
    {"dsf"_container, "dsf", "dsf", "", "", "audio/x-dsf", "", "dsd_lsbf_planar|dsd_lsbf"_codecs},
    {"dff"_container, "dff", "iff", "", "", "audio/x-dff", "",
     "dsd_msbf|dsd_msbf_planar|dst"_codecs},
    {"rm"_container, "rm", "rm", "rm", "", "application/vnd.rn-realmedia", "",
     "rv10|rv20|rv30|rv40|cook|ra_144|ra_288|sipr|aac"_codecs},
    {"dv"_container, "dv", "dv", "dv", "", "video/x-dv", "", "dvvideo|pcm_s16le"_codecs},
    {"mxf"_container, "mxf", "mxf", "mxf", "", "application/mxf", "",
     "mpeg2video|h264|dnxhd|prores|jpeg2000|dvvideo|pcm_s16le|pcm_s24le"_codecs},
    {"mp4/mjp2"_container, "mj2", "", ""},
    {"mpegts_204"_container, "ts", "", ""},
    {"h264"_container, "h264", "h264", "h264"},
    {"hevc"_container, "hevc", "hevc", "hevc"},
    {"mpeg4video"_container, "m4v", "m4v", "m4v"},
    {"vc1"_container, "vc1", "vc1|vc1test", "vc1"},
    {"ivf"_container, "ivf", "ivf", "ivf"},
};

constexpr const MediaNames *rowOf(int formatId)
{
    const auto *const row = std::ranges::find(s_MediaNames, formatId, &MediaNames::formatId);
    return row == std::end(s_MediaNames) ? nullptr : row;
}
static_assert(std::ranges::all_of(s_ContainerNames, [](const RegistryName &container) {
    return container.id == kAnyContainer || rowOf(container.id);
}));
static_assert(std::ranges::all_of(s_SubtypeNames, [](const SubtypeName &subtype) {
    return rowOf(formatIdOf(subtype.containerId, subtype.number)) != nullptr;
}));

/// Whether a name is one of those in a list.
bool lists(std::string_view names, std::string_view name)
{
    while (!names.empty()) {
        const std::string_view next = names.substr(0, names.find('|'));
        if (next == name) return true;
        names.remove_prefix(std::min(names.size(), next.size() + 1));
    }
    return false;
}

std::optional<int> containerListing(std::string_view MediaNames::*names, std::string_view name)
{
    for (const MediaNames &row : s_MediaNames)
        if (lists(row.*names, name)) return containerPart(row.formatId);
    return std::nullopt;
}

} // namespace

std::optional<int> containerReadBy(std::string_view demuxer)
{
    return containerListing(&MediaNames::demuxers, demuxer);
}

std::optional<int> containerWrittenBy(std::string_view muxer)
{
    return containerListing(&MediaNames::muxers, muxer);
}

bool writesSubtype(std::string_view muxer, int formatId)
{
    const MediaNames *row = rowOf(formatId);
    return row && lists(row->muxers, muxer);
}

std::string_view extensionOf(int formatId)
{
    const MediaNames *row = rowOf(formatId);
    if (!row) row = rowOf(containerPart(formatId));
    return row ? row->extension : "out";
}

std::string containerOption(int formatId, int sound, bool isMusic)
{
    // the same files, of which ffmpeg has two formats
    if (formatId == "mp3"_container && sound == "mp2"_codec) return "-f mp2";
    const MediaNames *row = rowOf(formatId);
    if (!row || row->option.empty()) return {};
    const bool takesCovers = !row->music.empty() || row->formatId == "mp4/m4a"_container;
    return std::string(row->option) + (isMusic && takesCovers ? " -vn" : "");
}

bool canHold(int formatId, int codec)
{
    const MediaNames *row = rowOf(formatId);
    return row && (row->codecs.has(kAnyCodec) || row->codecs.has(codec));
}

std::string mimeOf(int formatId, bool isMusic)
{
    const MediaNames *row = rowOf(formatId);
    if (!row || row->mime.empty()) return "application/octet-stream";
    return std::string(isMusic && !row->music.empty() ? row->music : row->mime);
}

int rankOf(int formatId, bool isMusic)
{
    const MediaNames *row = rowOf(formatId);
    const auto position = row ? row - s_MediaNames : std::ssize(s_MediaNames);
    const bool isForMusic = row && row->mime.starts_with("audio/");
    return static_cast<int>(isMusic && !isForMusic ? position + std::ssize(s_MediaNames)
                                                   : position);
}

} // namespace vornak::tool

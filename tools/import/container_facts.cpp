#include "tools/import/container_facts.h"

#include "base/media_ids.h"
#include "tools/import/names.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <iterator>

namespace vornak::tool {
namespace {

constexpr std::string_view kAnything;
constexpr std::string_view kMp4Codecs = "h264|hevc|av1|vp9|vvc|mpeg4|mpeg2video|mpeg1video|mjpeg|"
                                        "aac|mp3|mp2|mp1|ac3|eac3|alac|flac|opus|dts|dtshd|vorbis";
constexpr std::string_view k3gpCodecs = "h264|hevc|mpeg4|h263|aac|amr_nb|amr_wb";
constexpr std::string_view kMp4SoundCodecs = "aac|alac";
constexpr std::string_view kQuickTimeCodecs =
    "h264|hevc|mpeg4|mpeg2video|mjpeg|prores|dnxhd|svq1|svq3|qtrle|rpza|cinepak|dvvideo|h263|"
    "aac|mp3|ac3|eac3|alac|pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be|pcm_s32le|pcm_s32be|pcm_u8|"
    "pcm_f32le|pcm_f32be|adpcm_ima_qt|amr_nb|amr_wb";
constexpr std::string_view kTransportCodecs =
    "h264|hevc|vvc|mpeg1video|mpeg2video|mpeg4|"
    "aac|aac_latm|mp3|mp2|mp1|ac3|eac3|dts|dtshd|truehd|opus";
constexpr std::string_view kProgramCodecs =
    "mpeg1video|mpeg2video|h264|mp1|mp2|mp3|ac3|dts|pcm_dvd";

// In the order in which they are preferred for making: what can be sent while it is made, what
// holds much, what many know.
constexpr struct {
    const char *name;
    const char *option;        // null: ffmpeg doesn't make it
    const char *video, *music; // MIME types; null: the other one
    std::string_view codecs;
} s_Containers[] = {
    // name          option                      MIME types                                  codecs
    {"mpegts", "-f mpegts", "video/mpeg", nullptr, kTransportCodecs},
    {"mpegts_m2ts", nullptr, "video/vnd.dlna.mpeg-tts", nullptr, kTransportCodecs},
    {"mp4/isom", "-f mp4", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4/mp42", "-f mp4 -brand mp42", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4/mp41", "-f mp4 -brand mp41", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4", "-f mp4", "video/mp4", "audio/mp4", kMp4Codecs},
    {"matroska", "-f matroska", "video/x-matroska", "audio/x-matroska", kAnything},
    {"matroska/webm", "-f webm", "video/webm", "audio/webm", "vp8|vp9|av1|vorbis|opus"},
    {"mpegps", "-f vob", "video/mpeg", nullptr, kProgramCodecs},
    {"mpegps_dvd", nullptr, "video/mpeg", nullptr, kProgramCodecs},
    {"mpegps_mpeg1", nullptr, "video/mpeg", nullptr, "mpeg1video|mp1|mp2|mp3"},
    {"mp4/m4v", "-f ipod", "video/mp4", nullptr, kMp4Codecs},
    {"mp4/3gp", "-f 3gp", "video/3gpp", "audio/3gpp", k3gpCodecs},
    {"mp4/3g2", "-f 3g2", "video/3gpp2", "audio/3gpp2", k3gpCodecs},
    {"mp4/qt", "-f mov", "video/quicktime", nullptr, kQuickTimeCodecs},
    {"mp4/mov", nullptr, "video/quicktime", nullptr, kQuickTimeCodecs},
    {"mp4/msnv", "-f psp", "video/mp4", nullptr, "h264|mpeg4|aac"},
    {"avi", "-f avi", "video/x-msvideo", nullptr,
     "mpeg4|msmpeg4v1|msmpeg4v2|msmpeg4v3|h264|mjpeg|mpeg1video|mpeg2video|dvvideo|huffyuv|ffv1|"
     "cinepak|rawvideo|mp3|mp2|ac3|dts|aac|pcm_s16le|pcm_u8|pcm_s24le|adpcm_ms|adpcm_ima_wav|"
     "wmav1|wmav2"},
    {"asf", "-f asf", "video/x-ms-wmv", "audio/x-ms-wma",
     "wmv1|wmv2|wmv3|vc1|msmpeg4v2|msmpeg4v3|wmav1|wmav2|wmapro|wmalossless|wmavoice|mp3"},
    {"flv", "-f flv", "video/x-flv", nullptr, "flv1|h264|vp6f|vp6a|mp3|aac|speex|nellymoser"},
    {"mp3", "-f mp3", "audio/mpeg", nullptr, "mp3|mp2"},
    {"flac", "-f flac", "audio/flac", nullptr, "flac"},
    {"adts", "-f adts", "audio/vnd.dlna.adts", nullptr, "aac"},
    {"mp4/m4a", "-f ipod", "audio/mp4", nullptr, kMp4SoundCodecs},
    {"ogg", "-f ogg", "video/ogg", "audio/ogg", "theora|vp8|vorbis|opus|flac|speex"},
    {"wav", "-f wav", "audio/wav", nullptr,
     "pcm_s16le|pcm_s24le|pcm_s32le|pcm_u8|pcm_f32le|pcm_f64le|pcm_mulaw|pcm_alaw|adpcm_ms|"
     "adpcm_ima_wav"},
    {"ac3", "-f ac3", "audio/vnd.dolby.dd-raw", nullptr, "ac3"},
    {"eac3", "-f eac3", "audio/eac3", nullptr, "eac3"},
    {"dts", "-f dts", "audio/vnd.dts", nullptr, "dts|dtshd"},
    {"truehd", "-f truehd", "audio/vnd.dolby.mlp", nullptr, "truehd|mlp"},
    {"aiff", "-f aiff", "audio/aiff", nullptr, "pcm_s16be|pcm_s24be|pcm_s32be|pcm_s8"},
    {"au", "-f au", "audio/basic", nullptr, "pcm_s16be|pcm_mulaw|pcm_alaw|pcm_s24be"},
    {"caf", "-f caf", "audio/x-caf", nullptr, "alac|aac|pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be"},
    {"w64", "-f w64", "audio/x-w64", nullptr, "pcm_s16le|pcm_s24le|pcm_s32le|pcm_f32le"},
    {"wavpack", "-f wv", "audio/x-wavpack", nullptr, "wavpack"},
    {"tta", "-f tta", "audio/x-tta", nullptr, "tta"},
    {"latm", "-f latm", "audio/mp4a-latm", nullptr, "aac|aac_latm"},
    {"mpegvideo", "-f mpeg2video", "video/mpeg", nullptr, "mpeg1video|mpeg2video"},
    {"amr", nullptr, "audio/amr", nullptr, "amr_nb|amr_wb"},
    {"ape", nullptr, "audio/x-ape", nullptr, "ape"},
    {"mpc", nullptr, "audio/x-musepack", nullptr, "musepack7|musepack8"},
    {"dsf", nullptr, "audio/x-dsf", nullptr, "dsd_lsbf_planar|dsd_lsbf"},
    {"dff", nullptr, "audio/x-dff", nullptr, "dsd_msbf|dsd_msbf_planar|dst"},
    {"rm", nullptr, "application/vnd.rn-realmedia", nullptr,
     "rv10|rv20|rv30|rv40|cook|ra_144|ra_288|sipr|aac"},
    {"dv", nullptr, "video/x-dv", nullptr, "dvvideo|pcm_s16le"},
    {"mxf", nullptr, "application/mxf", nullptr,
     "mpeg2video|h264|dnxhd|prores|jpeg2000|dvvideo|pcm_s16le|pcm_s24le"},
};

const auto *findRow(int format)
{
    const auto *const row =
        std::ranges::find(s_Containers, containerText(format),
                          [](const auto &each) { return std::string(each.name); });
    return row == std::end(s_Containers) ? nullptr : row;
}

} // namespace

std::string containerOption(int format, int sound, bool isMusic)
{
    // the same files, of which ffmpeg has two formats
    if (format == "mp3"_container && sound == "mp2"_codec) return "-f mp2";
    const auto *const row = findRow(format);
    if (!row || !row->option) return {};
    const bool takesCovers = row->music || std::string_view(row->name) == "mp4/m4a";
    return std::string(row->option) + (isMusic && takesCovers ? " -vn" : "");
}

bool canHold(int format, int codec)
{
    const auto *const row = findRow(format);
    if (!row) return false;
    if (row->codecs == kAnything) return true;
    const std::vector<std::string> names = splitList(row->codecs, '|');
    return std::ranges::find(names, codecText(codec)) != names.end();
}

std::string mimeOf(int format, bool isMusic)
{
    const auto *const row = findRow(format);
    if (!row) return "application/octet-stream";
    return isMusic && row->music ? row->music : row->video;
}

int rankOf(int format, bool isMusic)
{
    const auto *const row = findRow(format);
    const auto position = row ? row - s_Containers : std::ssize(s_Containers);
    const bool isForMusic = row && std::string_view(row->video).starts_with("audio/");
    return static_cast<int>(isMusic && !isForMusic ? position + std::ssize(s_Containers)
                                                   : position);
}

} // namespace vornak::tool

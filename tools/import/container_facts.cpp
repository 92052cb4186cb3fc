#include "tools/import/container_facts.h"

#include "base/media_ids.h"
#include "tools/import/limits.h"
#include "tools/import/names.h"

#include <algorithm>
#include <iterator>

namespace vornak::tool {
namespace {

constexpr CodecList kAnything{};
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

// In the order in which they are preferred for making: what can be sent while it is made, what
// holds much, what many know.
constexpr struct {
    int format;
    const char *option;        // null: ffmpeg doesn't make it
    const char *video, *music; // MIME types; null: the other one
    CodecList codecs;
} s_Containers[] = {
    // name          option                      MIME types                                  codecs
    {"mpegts"_container, "-f mpegts", "video/mpeg", nullptr, kTransportCodecs},
    {"mpegts_m2ts"_container, nullptr, "video/vnd.dlna.mpeg-tts", nullptr, kTransportCodecs},
    {"mp4/isom"_container, "-f mp4", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4/mp42"_container, "-f mp4 -brand mp42", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4/mp41"_container, "-f mp4 -brand mp41", "video/mp4", "audio/mp4", kMp4Codecs},
    {"mp4"_container, "-f mp4", "video/mp4", "audio/mp4", kMp4Codecs},
    {"matroska"_container, "-f matroska", "video/x-matroska", "audio/x-matroska", kAnything},
    {"matroska/webm"_container, "-f webm", "video/webm", "audio/webm",
     "vp8|vp9|av1|vorbis|opus"_codecs},
    {"mpegps"_container, "-f vob", "video/mpeg", nullptr, kProgramCodecs},
    {"mpegps_dvd"_container, nullptr, "video/mpeg", nullptr, kProgramCodecs},
    {"mpegps_mpeg1"_container, nullptr, "video/mpeg", nullptr, "mpeg1video|mp1|mp2|mp3"_codecs},
    {"mp4/m4v"_container, "-f ipod", "video/mp4", nullptr, kM4vCodecs},
    {"mp4/3gp"_container, "-f 3gp", "video/3gpp", "audio/3gpp", k3gpCodecs},
    {"mp4/3g2"_container, "-f 3g2", "video/3gpp2", "audio/3gpp2", k3gpCodecs},
    {"mp4/qt"_container, "-f mov", "video/quicktime", nullptr, kQuickTimeCodecs},
    {"mp4/mov"_container, nullptr, "video/quicktime", nullptr, kQuickTimeCodecs},
    {"mp4/msnv"_container, "-f psp", "video/mp4", nullptr, "h264|mpeg4|aac"_codecs},
    {"avi"_container, "-f avi", "video/x-msvideo", nullptr,
     "mpeg4|msmpeg4v1|msmpeg4v2|msmpeg4v3|h264|mjpeg|mpeg1video|mpeg2video|dvvideo|huffyuv|ffv1|"
     "cinepak|rawvideo|mp3|mp2|ac3|dts|aac|pcm_s16le|pcm_u8|pcm_s24le|adpcm_ms|adpcm_ima_wav|"
     "wmav1|wmav2"_codecs},
    {"asf"_container, "-f asf", "video/x-ms-wmv", "audio/x-ms-wma",
     "wmv1|wmv2|wmv3|vc1|msmpeg4v2|msmpeg4v3|wmav1|wmav2|wmapro|wmalossless|wmavoice|mp3"_codecs},
    {"flv"_container, "-f flv", "video/x-flv", nullptr,
     "flv1|h264|vp6f|vp6a|mp3|aac|speex|nellymoser"_codecs},
    {"mp3"_container, "-f mp3", "audio/mpeg", nullptr, "mp3|mp2"_codecs},
    {"flac"_container, "-f flac", "audio/flac", nullptr, "flac"_codecs},
    {"adts"_container, "-f adts", "audio/vnd.dlna.adts", nullptr, "aac"_codecs},
    {"mp4/m4a"_container, "-f ipod", "audio/mp4", nullptr, kMp4SoundCodecs},
    {"ogg"_container, "-f ogg", "video/ogg", "audio/ogg",
     "theora|vp8|vorbis|opus|flac|speex"_codecs},
    {"wav"_container, "-f wav", "audio/wav", nullptr,
     "pcm_s16le|pcm_s24le|pcm_s32le|pcm_u8|pcm_f32le|pcm_f64le|pcm_mulaw|pcm_alaw|adpcm_ms|"
     "adpcm_ima_wav"_codecs},
    {"ac3"_container, "-f ac3", "audio/vnd.dolby.dd-raw", nullptr, "ac3"_codecs},
    {"eac3"_container, "-f eac3", "audio/eac3", nullptr, "eac3"_codecs},
    {"dts"_container, "-f dts", "audio/vnd.dts", nullptr, "dts|dtshd"_codecs},
    {"truehd"_container, "-f truehd", "audio/vnd.dolby.mlp", nullptr, "truehd|mlp"_codecs},
    {"aiff"_container, "-f aiff", "audio/aiff", nullptr,
     "pcm_s16be|pcm_s24be|pcm_s32be|pcm_s8"_codecs},
    {"au"_container, "-f au", "audio/basic", nullptr,
     "pcm_s16be|pcm_mulaw|pcm_alaw|pcm_s24be"_codecs},
    {"caf"_container, "-f caf", "audio/x-caf", nullptr,
     "alac|aac|pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be"_codecs},
    {"w64"_container, "-f w64", "audio/x-w64", nullptr,
     "pcm_s16le|pcm_s24le|pcm_s32le|pcm_f32le"_codecs},
    {"wavpack"_container, "-f wv", "audio/x-wavpack", nullptr, "wavpack"_codecs},
    {"tta"_container, "-f tta", "audio/x-tta", nullptr, "tta"_codecs},
    {"latm"_container, "-f latm", "audio/mp4a-latm", nullptr, "aac|aac_latm"_codecs},
    {"mpegvideo"_container, "-f mpeg2video", "video/mpeg", nullptr, "mpeg1video|mpeg2video"_codecs},
    {"amr"_container, nullptr, "audio/amr", nullptr, "amr_nb|amr_wb"_codecs},
    {"ape"_container, nullptr, "audio/x-ape", nullptr, "ape"_codecs},
    {"mpc"_container, nullptr, "audio/x-musepack", nullptr, "musepack7|musepack8"_codecs},
    {"dsf"_container, nullptr, "audio/x-dsf", nullptr, "dsd_lsbf_planar|dsd_lsbf"_codecs},
    {"dff"_container, nullptr, "audio/x-dff", nullptr, "dsd_msbf|dsd_msbf_planar|dst"_codecs},
    {"rm"_container, nullptr, "application/vnd.rn-realmedia", nullptr,
     "rv10|rv20|rv30|rv40|cook|ra_144|ra_288|sipr|aac"_codecs},
    {"dv"_container, nullptr, "video/x-dv", nullptr, "dvvideo|pcm_s16le"_codecs},
    {"mxf"_container, nullptr, "application/mxf", nullptr,
     "mpeg2video|h264|dnxhd|prores|jpeg2000|dvvideo|pcm_s16le|pcm_s24le"_codecs},
};

const auto *findRow(int format)
{
    const auto *const row =
        std::ranges::find(s_Containers, format, [](const auto &each) { return each.format; });
    return row == std::end(s_Containers) ? nullptr : row;
}

// The bit rates of these codecs need no limit: they can't be above those of the names.
constexpr struct {
    const char *name, *codec, *container, *profile;
    int channels, sampleRate; // at most
} s_Names[] = {
    {"MP3", "mp3", "mp3", "", 2, 48000},
    {"AAC_ADTS", "aac", "adts", "lc", 2, 48000},
    {"AAC_ISO", "aac", "mp4", "lc", 2, 48000},
    {"AC3", "ac3", "ac3", "", 6, 48000},
};

} // namespace

std::string containerOption(int format, int sound, bool isMusic)
{
    // the same files, of which ffmpeg has two formats
    if (format == "mp3"_container && sound == "mp2"_codec) return "-f mp2";
    const auto *const row = findRow(format);
    if (!row || !row->option) return {};
    const bool takesCovers = row->music || row->format == "mp4/m4a"_container;
    return std::string(row->option) + (isMusic && takesCovers ? " -vn" : "");
}

bool canHold(int format, int codec)
{
    const auto *const row = findRow(format);
    if (!row) return false;
    return row->codecs.empty() || row->codecs.has(codec);
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

std::string dlnaNameOfMusic(const Limits &limits, int format)
{
    for (const auto &row : s_Names) {
        const Limits named{.codec = codecNamed(row.codec),
                           .profiles = profilesNamed(row.profile),
                           .channels = {0, row.channels},
                           .sampleRate = {0, row.sampleRate}};
        if (containerPart(format) == containerNamed(row.container) && contains(named, limits))
            return row.name;
    }
    return {};
}

} // namespace vornak::tool

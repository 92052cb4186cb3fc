#include "tools/check/transcoder.h"

#include "base/media_ids.h"
#include "include/vornak_host.h"
#include "tools/probe/codec_mapping.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <unordered_map>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace vornak::tool {
namespace {

// Encoders that libavcodec may be built without.
constexpr struct {
    std::string_view encoder;
    int codecId;
} s_OtherEncoders[] = {
    {"libopenh264", "h264"_codec},      {"libkvazaar", "hevc"_codec},
    {"libfdk_aac", "aac"_codec},        {"libfaac", "aac"_codec},
    {"libvo_aacenc", "aac"_codec},      {"libopencore_amrnb", "amr_nb"_codec},
    {"libvo_amrwbenc", "amr_wb"_codec}, {"libwavpack", "wavpack"_codec},
};

// ffmpeg's own options, and those of the appliance's transcoder that the library adds.
constexpr std::string_view kValueOptions =
    "c|codec|f|t|to|ss|sseof|itsoffset|itsscale|i|map|metadata|map_metadata|"
    "map_chapters|map_channel|disposition|program|attach|streamid|frames|vframes|"
    "aframes|dframes|fs|q|qscale|aq|vol|filter|filter_complex|lavfi|filter_script|"
    "filter_complex_script|filter_threads|filter_complex_threads|vf|af|s|r|fpsmax|"
    "aspect|pix_fmt|ar|ac|sample_fmt|channel_layout|ch_layout|guess_layout_max|"
    "vcodec|acodec|scodec|dcodec|tag|vtag|atag|stag|bsf|vbsf|absf|profile|level|"
    "pre|vpre|apre|spre|fpre|target|pass|passlogfile|vsync|fps_mode|async|copytb|"
    "enc_time_base|force_key_frames|forced_idr|rc_override|top|muxdelay|muxpreload|"
    "max_muxing_queue_size|muxing_queue_data_threshold|bits_per_raw_sample|hwaccel|"
    "hwaccel_device|hwaccel_output_format|init_hw_device|filter_hw_device|vaapi_device|"
    "qsv_device|thread_queue_size|stream_loop|readrate|loglevel|v|timelimit|progress|"
    "stats_period|max_error_rate|abort_on|time_base|timestamp|dts_delta_threshold|"
    "dts_error_threshold|discard|display_rotation|chroma_intra_matrix|inter_matrix|"
    "intra_matrix|vstats_file|vstats_version|canvas_size|timecode|adrift_threshold|"
    "cpuflags|cpucount|frame_drop_threshold|sdp_file|copypriorss|dump_attachment|"
    "max_alloc|reinit_filter|apad|num_frames|vp|vlevel";
constexpr std::string_view kFlagOptions =
    "vn|an|sn|dn|y|n|re|shortest|copyts|start_at_zero|copyinkf|bitexact|"
    "autorotate|autoscale|accurate_seek|seek_timestamp|ignore_unknown|copy_unknown|"
    "find_stream_info|fix_sub_duration|hide_banner|stdin|stats|vstats|benchmark|"
    "xerror|deinterlace|qphist|psnr|dump|hex|debug_ts|isync|report|force_fps|"
    "auto_conversion_filters|benchmark_all|recast_media";

// Those of libswscale and libswresample
constexpr std::string_view kScalerOptions =
    "sws_flags|sws_dither|alphablend|param0|param1|src_range|dst_range|src_format|"
    "dst_format|resampler|dither_method|dither_scale|filter_size|filter_type|"
    "phase_shift|linear_interp|exact_rational|cheby|kaiser_beta|precision|"
    "matrix_encoding|lfe_mix_level|center_mix_level|surround_mix_level|rematrix_volume|"
    "rematrix_maxval|internal_sample_fmt|in_sample_fmt|out_sample_fmt|in_sample_rate|"
    "out_sample_rate|in_channel_layout|out_channel_layout|in_chlayout|out_chlayout|"
    "in_channel_count|out_channel_count|isf|osf|isr|osr|icl|ocl|ichl|ochl|ich|och|"
    "clev|min_comp|min_hard_comp|max_soft_comp|comp_duration|first_pts|"
    "output_sample_bits|resample_cutoff";

constexpr const char *kAppliancesMatroska = "mkvtimestamp_v2"; // a format of its transcoder

// What is behind the codec's name in those of such encoders.
constexpr std::string_view s_Hardware[] = {"amf",     "at",    "mediacodec",  "mf",
                                           "nvenc",   "omx",   "qsv",         "rkmpp",
                                           "v4l2m2m", "vaapi", "videotoolbox"};

bool lists(const auto &names, std::string_view name)
{
    return std::ranges::find(names, name) != std::end(names);
}

int registryId(AVMediaType type, AVCodecID id)
{
    AVCodecParameters parameters{};
    parameters.codec_type = type;
    parameters.codec_id = id;
    parameters.profile = FF_PROFILE_UNKNOWN;
    return identifyCodec(parameters).codecId;
}

/// The codecs of libavcodec that are one to the registry.
const std::vector<AVCodecID> &codecsOf(int codecId)
{
    static const std::unordered_map<int, std::vector<AVCodecID>> s_codecs = [] {
        std::unordered_map<int, std::vector<AVCodecID>> codecs;
        for (const AVCodecDescriptor *each = nullptr; (each = avcodec_descriptor_next(each));)
            codecs[registryId(each->type, each->id)].push_back(each->id);
        return codecs;
    }();
    static const std::vector<AVCodecID> s_none;
    const auto found = s_codecs.find(codecId);
    return found == s_codecs.end() ? s_none : found->second;
}

/// By its name, or the usual one of the codec of that name, as ffmpeg has it.
const AVCodec *findEncoder(const std::string &name)
{
    if (const AVCodec *codec = avcodec_find_encoder_by_name(name.c_str())) return codec;
    const AVCodecDescriptor *codec = avcodec_descriptor_get_by_name(name.c_str());
    return codec ? avcodec_find_encoder(codec->id) : nullptr;
}

/// An option of libavcodec or libavformat, or of one of their codecs and formats.
const AVOption *findLibraryOption(const char *name)
{
    constexpr int kSearch = AV_OPT_SEARCH_CHILDREN | AV_OPT_SEARCH_FAKE_OBJ;
    for (const AVClass *options : {avcodec_get_class(), avformat_get_class()})
        if (const AVOption *found = av_opt_find(&options, name, nullptr, 0, kSearch)) return found;
    return nullptr;
}

/// Whether a letter in front says for which streams an option is: "ab" is "b" for sound.
bool isForStreams(const std::string &name)
{
    constexpr struct {
        char letter;
        int flag;
    } s_Letters[] = {{'v', AV_OPT_FLAG_VIDEO_PARAM},
                     {'a', AV_OPT_FLAG_AUDIO_PARAM},
                     {'s', AV_OPT_FLAG_SUBTITLE_PARAM}};
    return std::ranges::any_of(s_Letters, [&](const auto &row) {
        if (!name.starts_with(row.letter)) return false;
        const AVOption *option = findLibraryOption(name.c_str() + 1);
        return option && (option->flags & row.flag) != 0;
    });
}

OptionForm askForOption(const std::string &name)
{
    static const std::vector<std::string> s_flags = splitList(kFlagOptions);
    static const std::vector<std::string> s_values = splitList(kValueOptions);
    const bool isNegated = name.starts_with("no") && lists(s_flags, name.substr(2));
    if (lists(s_flags, name) || isNegated) return OptionForm::Flag;
    static const std::vector<std::string> s_scalers = splitList(kScalerOptions);
    if (lists(s_values, name) || lists(s_scalers, name) || findLibraryOption(name.c_str()) ||
        isForStreams(name))
        return OptionForm::Value;
    return OptionForm::Unknown;
}

void addOptions(const AVClass *options, std::vector<std::string> &names)
{
    for (const AVOption *option = nullptr; (option = av_opt_next(&options, option));)
        if (option->type != AV_OPT_TYPE_CONST) names.emplace_back(option->name);
    void *state = nullptr;
    while (const AVClass *inner = av_opt_child_class_iterate(options, &state))
        addOptions(inner, names);
}

std::string versionText(unsigned version)
{
    return fmt::format("{}.{}.{}", AV_VERSION_MAJOR(version), AV_VERSION_MINOR(version),
                       AV_VERSION_MICRO(version));
}

} // namespace

std::string askedCodecs()
{
    return "libavcodec " + versionText(avcodec_version());
}

std::string askedFormats()
{
    return "libavformat " + versionText(avformat_version());
}

std::optional<int> encodedCodec(std::string_view encoder)
{
    const std::string name(encoder);
    if (const AVCodec *codec = findEncoder(name)) return registryId(codec->type, codec->id);
    for (const auto &row : s_OtherEncoders)
        if (row.encoder == encoder) return row.codecId;
    const std::size_t end = name.rfind('_');
    if (end == std::string::npos || !lists(s_Hardware, encoder.substr(end + 1)))
        return std::nullopt;
    const int codec = codecNamed(name.substr(0, end));
    return codec < 0 ? std::nullopt : std::optional(codec);
}

std::string usualEncoder(int codecId)
{
    for (const AVCodecID codec : codecsOf(codecId))
        if (const AVCodec *encoder = avcodec_find_encoder(codec)) return encoder->name;
    return {};
}

std::vector<std::string> encoderNames(bool isVideo)
{
    std::vector<std::string> names;
    void *state = nullptr;
    while (const AVCodec *codec = av_codec_iterate(&state))
        if (av_codec_is_encoder(codec) &&
            codec->type == (isVideo ? AVMEDIA_TYPE_VIDEO : AVMEDIA_TYPE_AUDIO))
            names.emplace_back(codec->name);
    return names;
}

bool isMuxer(std::string_view name)
{
    return name == kAppliancesMatroska ||
           av_guess_format(std::string(name).c_str(), nullptr, nullptr);
}

const std::vector<std::string> &muxerNames()
{
    static const std::vector<std::string> s_names = [] {
        std::vector<std::string> names = {kAppliancesMatroska};
        void *state = nullptr;
        while (const AVOutputFormat *format = av_muxer_iterate(&state))
            names.emplace_back(format->name);
        return names;
    }();
    return s_names;
}

bool refusesCodec(std::string_view muxer, int codecId)
{
    const AVOutputFormat *format = av_guess_format(std::string(muxer).c_str(), nullptr, nullptr);
    const std::vector<AVCodecID> &codecs = codecsOf(codecId);
    return format && !codecs.empty() && std::ranges::all_of(codecs, [&](AVCodecID codec) {
               return avformat_query_codec(format, codec, FF_COMPLIANCE_EXPERIMENTAL) == 0;
           });
}

std::optional<std::string> muxerCalled(const std::string &name)
{
    const AVOutputFormat *format = av_guess_format(nullptr, ("." + name).c_str(), nullptr);
    if (!format) return std::nullopt;
    return format->name;
}

OptionForm formOfOption(const std::string &name)
{
    static std::unordered_map<std::string, OptionForm> s_asked;
    const auto known = s_asked.find(name);
    return known != s_asked.end() ? known->second
                                  : s_asked.emplace(name, askForOption(name)).first->second;
}

std::vector<std::string> optionNames()
{
    std::vector<std::string> names = splitList(kValueOptions);
    for (const std::string_view more : {kFlagOptions, kScalerOptions})
        std::ranges::move(splitList(more), std::back_inserter(names));
    for (const AVClass *options : {avcodec_get_class(), avformat_get_class()})
        addOptions(options, names);
    return names;
}

std::optional<Pixels> pixelsCalled(const std::string &name)
{
    const AVPixFmtDescriptor *format = av_pix_fmt_desc_get(av_get_pix_fmt(name.c_str()));
    if (!format || (format->flags & AV_PIX_FMT_FLAG_HWACCEL) != 0) return std::nullopt;
    const bool isNarrow = format->nb_components < 3 || format->log2_chroma_w > 0;
    const bool isLow = format->nb_components < 3 || format->log2_chroma_h > 0;
    return Pixels{format->comp[0].depth, isLow ? 420 : isNarrow ? 422 : 444};
}

} // namespace vornak::tool

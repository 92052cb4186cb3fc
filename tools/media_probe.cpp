#include "media_probe.h"

#include "probe/bit_rates.h"
#include "probe/codec_mapping.h"
#include "probe/container_mapping.h"
#include "probe/media_file.h"
#include "probe/packet_sample.h"
#include "probe/play_exceptions.h"

#include <algorithm>
#include <cstdlib>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

/// A stream that is played, with what becomes of its bit rate.
struct PlayedStream {
    AVStream *stream;
    StreamRate rate;
};

bool isCover(const AVStream &stream)
{
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isVideo(const AVStream &stream)
{
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(stream);
}

bool isAudio(const AVStream &stream)
{
    return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

/// Whether anything of the stream could be made out. What is taken for MP3 by its name alone
/// has none of these.
bool hasParameters(const PlayedStream &played)
{
    const AVCodecParameters &parameters = *played.stream->codecpar;
    return isAudio(*played.stream)
               ? parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0
               : parameters.width > 0 && parameters.height > 0;
}

const char *tagOf(const AVStream &stream, const char *key)
{
    const AVDictionaryEntry *entry = av_dict_get(stream.metadata, key, nullptr, 0);
    return entry ? entry->value : nullptr;
}

/// MPEG-1 says with this that its rate varies.
constexpr std::int64_t kVariableRate = std::int64_t{0x3FFFF} * 400;

/// In bits per second; 0: none.
std::int64_t statedBitrate(const AVStream &stream)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    if (parameters.bit_rate > 0 && parameters.bit_rate != kVariableRate) return parameters.bit_rate;
    // what Matroska's authoring tools have counted
    for (const char *key : {"BPS", "BPS-eng"})
        if (const char *tag = tagOf(stream, key)) return std::strtoll(tag, nullptr, 10);
    return std::int64_t{av_get_exact_bits_per_sample(parameters.codec_id)} *
           parameters.sample_rate * parameters.ch_layout.nb_channels;
}

std::vector<PlayedStream> playedStreams(const AVFormatContext &context)
{
    std::vector<PlayedStream> played;
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        AVStream *stream = context.streams[i];
        if (!isVideo(*stream) && !isAudio(*stream)) continue;
        played.push_back({stream, {.stated = statedBitrate(*stream), .isVideo = isVideo(*stream)}});
    }
    return played;
}

double durationOf(const AVFormatContext &context)
{
    return context.duration > 0 ? static_cast<double>(context.duration) / AV_TIME_BASE : 0;
}

/// Bits per second of all that is played; 0: unknown.
std::int64_t wholeBitrate(const MediaFile &file)
{
    const AVFormatContext &context = *file.context();
    std::int64_t bytes = file.size();
    for (unsigned i = 0; i < context.nb_streams; ++i)
        if (isCover(*context.streams[i])) bytes -= context.streams[i]->attached_pic.size;
    const double seconds = durationOf(context);
    return seconds > 0 ? static_cast<std::int64_t>(static_cast<double>(bytes) * 8 / seconds) : 0;
}

bool isMatroska(const AVFormatContext &context)
{
    return std::string_view(context.iformat->name) == "matroska,webm";
}

bool isMp4(const AVFormatContext &context)
{
    return std::string_view(context.iformat->name).starts_with("mov,");
}

/// Whether the headers leave something open that the packets can tell.
bool needsSample(const MediaFile &file, const std::vector<PlayedStream> &played)
{
    const auto silent = std::ranges::count_if(
        played, [](const PlayedStream &stream) { return stream.rate.stated <= 0; });
    const bool hasVideo =
        std::ranges::any_of(played, [](const PlayedStream &stream) { return stream.rate.isVideo; });
    return silent > 1 || (silent == 1 && wholeBitrate(file) <= 0) ||
           (hasVideo && isMatroska(*file.context()));
}

/// What the first packets tell, one entry a stream of the file; nothing when nobody asks.
std::vector<SampledStream> sampleFor(const MediaFile &file, std::vector<PlayedStream> &played)
{
    if (!needsSample(file, played)) return std::vector<SampledStream>(file.context()->nb_streams);
    std::vector<SampledStream> sample = samplePackets(*file.context());
    for (PlayedStream &stream : played) {
        const SampledStream &sampled = sample[static_cast<std::size_t>(stream.stream->index)];
        if (sampled.seconds > 0)
            stream.rate.sampled =
                static_cast<std::int64_t>(static_cast<double>(sampled.bytes) * 8 / sampled.seconds);
    }
    return sample;
}

void settleBitRates(const MediaFile &file, std::vector<PlayedStream> &played)
{
    std::vector<StreamRate> rates;
    rates.reserve(played.size());
    for (const PlayedStream &stream : played) rates.push_back(stream.rate);
    settleBitRates(rates, wholeBitrate(file));
    for (std::size_t i = 0; i < played.size(); ++i) played[i].rate = rates[i];
}

std::vector<std::int64_t> tableOfTimes(AVStream *stream)
{
    constexpr int kMostTimes = 100'000; // about an hour

    std::vector<std::int64_t> times;
    const int count = std::min(avformat_index_get_entries_count(stream), kMostTimes);
    times.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) times.push_back(avformat_index_get_entry(stream, i)->timestamp);
    return times;
}

/// The times of the pictures come from the table of an MP4 file or what was seen of a Matroska
/// file. Other containers' times say too little: AVI has none, a broadcast jumps.
PictureFacts gatherPictureFacts(const AVFormatContext &context, AVStream *stream,
                                SampledStream &sampled)
{
    PictureFacts facts{.times = {}, .interlaced = sampled.interlaced};
    if (isMatroska(context)) facts.times = std::move(sampled.times);
    if (isMp4(context)) facts.times = tableOfTimes(stream);
    return facts;
}

int knownLevel(const AVCodecParameters &parameters)
{
    return std::max(parameters.level, 0);
}

VideoStream describeVideo(const PlayedStream &played, const PictureFacts &pictures)
{
    const AVCodecParameters &parameters = *played.stream->codecpar;
    CodecIdentity codec = identifyCodec(parameters);
    PlayExceptions exceptions = findPlayExceptions(*played.stream, pictures);
    return {
        .codecId = codec.codecId,
        .profile = codec.profile,
        .level = knownLevel(parameters),
        .width = parameters.width,
        .height = parameters.height,
        .bitrate = played.rate.bitrate,
        .bitrateEstimated = played.rate.estimated,
        .playExceptions = exceptions.bits,
        .codecName = std::move(codec.codecName),
        .profileName = std::move(codec.profileName),
        .playExceptionNames = std::move(exceptions.names),
    };
}

AudioTrack describeAudio(const PlayedStream &played, int number)
{
    const AVCodecParameters &parameters = *played.stream->codecpar;
    CodecIdentity codec = identifyCodec(parameters);
    const char *language = tagOf(*played.stream, "language");
    return {
        .number = number,
        .codecId = codec.codecId,
        .profile = codec.profile,
        .level = knownLevel(parameters),
        .channels = parameters.ch_layout.nb_channels,
        .bitrate = played.rate.bitrate,
        .bitrateEstimated = played.rate.estimated,
        .sampleRate = parameters.sample_rate,
        .isDefault = (played.stream->disposition & AV_DISPOSITION_DEFAULT) != 0,
        .codecName = std::move(codec.codecName),
        .profileName = std::move(codec.profileName),
        .language = language ? language : "",
    };
}

MediaInfo describe(const MediaFile &file, std::vector<PlayedStream> played)
{
    std::vector<SampledStream> sample = sampleFor(file, played);
    settleBitRates(file, played);

    ContainerIdentity container = identifyContainer(file);
    MediaInfo media;
    media.formatId = container.formatId;
    media.containerName = std::move(container.name);
    media.duration = durationOf(*file.context());
    media.stillImage = isPictureContainer(file);
    for (const PlayedStream &stream : played)
        if (!stream.rate.isVideo)
            media.audio.push_back(describeAudio(stream, static_cast<int>(media.audio.size()) + 1));
        else if (!media.video)
            media.video = describeVideo(
                stream, gatherPictureFacts(*file.context(), stream.stream,
                                           sample[static_cast<std::size_t>(stream.stream->index)]));
    return media;
}

} // namespace

ProbeResult probeMedia(const std::string &path)
{
    const MediaFile file(path);
    if (!file.context()) return {std::nullopt, file.error()};
    std::vector<PlayedStream> played = playedStreams(*file.context());
    if (played.empty()) return {std::nullopt, "holds neither audio nor video"};
    if (std::ranges::none_of(played, hasParameters)) return {std::nullopt, kNotMedia};
    return {describe(file, std::move(played)), {}};
}

} // namespace vornak::tool

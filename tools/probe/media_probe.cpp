#include "tools/probe/media_probe.h"

#include "tools/probe/bit_rates.h"
#include "tools/probe/codec_mapping.h"
#include "tools/probe/container_mapping.h"
#include "tools/probe/media_file.h"
#include "tools/probe/packet_sample.h"
#include "tools/probe/play_exceptions.h"

#include <algorithm>
#include <bit>
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

bool isMatroska(const AVFormatContext &context)
{
    return std::string_view(context.iformat->name) == "matroska,webm";
}

bool isMp4(const AVFormatContext &context)
{
    return std::string_view(context.iformat->name).starts_with("mov,");
}

std::vector<PlayedStream> playedStreams(const MediaFile &file)
{
    const AVFormatContext &context = *file.context();
    std::vector<PlayedStream> played;
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        AVStream *stream = context.streams[i];
        if (!isVideo(*stream) && !isAudio(*stream)) continue;
        played.push_back(
            {stream, {.stated = statedBitrate(file, *stream), .isVideo = isVideo(*stream)}});
    }
    return played;
}

std::size_t indexOf(const PlayedStream &stream)
{
    return static_cast<std::size_t>(stream.stream->index);
}

/// A file while more and more of it becomes known.
struct Survey {
    MediaFile &file;
    std::vector<PlayedStream> played;
    double duration = 0;              // seconds; 0: unknown
    std::vector<SampledStream> start; // of all streams

    SampledStream &startOf(const PlayedStream &stream) { return start[indexOf(stream)]; }
};

/// A file that is nothing but the frames of one stream says nowhere how long it is.
bool isBareStream(const Survey &survey)
{
    return survey.played.size() == 1 && survey.duration <= 0 &&
           guessesDuration(*survey.file.context());
}

/// A duration made from bit rates holds for steady ones: those of sound, and of pictures whose
/// header has it (DV).
double statedDuration(const MediaFile &file, const std::vector<PlayedStream> &played)
{
    const AVFormatContext &context = *file.context();
    const bool isSteady = std::ranges::all_of(played, [&](const PlayedStream &stream) {
        return stream.rate.stated > 0 &&
               (!stream.rate.isVideo || file.headerBitrate(stream.stream->index) > 0);
    });
    if (context.duration <= 0 || (guessesDuration(context) && !isSteady)) return 0;
    return static_cast<double>(context.duration) / AV_TIME_BASE;
}

std::int64_t playedBytes(const MediaFile &file)
{
    const AVFormatContext &context = *file.context();
    std::int64_t bytes = file.size();
    for (unsigned i = 0; i < context.nb_streams; ++i)
        if (isCover(*context.streams[i])) bytes -= context.streams[i]->attached_pic.size;
    return bytes;
}

/// Bits per second of all that is played; 0: unknown.
std::int64_t wholeBitrate(const Survey &survey)
{
    if (survey.duration <= 0) return 0;
    return static_cast<std::int64_t>(static_cast<double>(playedBytes(survey.file)) * 8 /
                                     survey.duration);
}

bool hasVideo(const Survey &survey)
{
    return std::ranges::any_of(survey.played,
                               [](const PlayedStream &stream) { return stream.rate.isVideo; });
}

/// A transport stream fills up its packets: sound alone makes up much less than the whole.
bool isSongInBroadcast(const Survey &survey)
{
    return std::string_view(survey.file.context()->iformat->name) == "mpegts" && !hasVideo(survey);
}

bool isOpenMp3(const PlayedStream &stream)
{
    return stream.rate.stated <= 0 && stream.stream->codecpar->codec_id == AV_CODEC_ID_MP3;
}

/// Whether the headers leave rates open that the packets can tell.
bool needsRates(const Survey &survey)
{
    const auto silent = std::ranges::count_if(
        survey.played, [](const PlayedStream &stream) { return stream.rate.stated <= 0; });
    return isBareStream(survey) || silent > 1 ||
           (silent == 1 && (wholeBitrate(survey) <= 0 || isSongInBroadcast(survey))) ||
           std::ranges::any_of(survey.played, isOpenMp3);
}

bool needsTimes(const Survey &survey)
{
    return isMatroska(*survey.file.context()) && hasVideo(survey);
}

std::int64_t rateOf(const SampledStream &sampled)
{
    if (sampled.seconds <= 0) return 0;
    return static_cast<std::int64_t>(static_cast<double>(sampled.bytes) * 8 / sampled.seconds);
}

/// How much to read first, and then at each of several places.
struct Reading {
    SampleSize start;
    std::int64_t place;
};

Reading readingFor(const Survey &survey)
{
    constexpr std::int64_t kQuicklyRead = 1'000'000;

    if (!needsRates(survey)) return {{100, 4'000'000}, 0}; // some seconds of pictures
    const bool readsAll = playedBytes(survey.file) <= kQuicklyRead;
    // what libavformat has looked at already makes the greater part of the start
    if (!isBareStream(survey)) return {{readsAll ? kAnyNumber : 250, 4'000'000}, 250'000};
    // a place has some seconds of sound, or the pictures from one key frame to the next
    if (survey.played[0].rate.isVideo) return {{kAnyNumber, 4'000'000}, 500'000};
    return {{kAnyNumber, 250'000}, 32'000};
}

/// The start counts as it is, what follows lasts as long as the places say.
double countedDuration(const SampledStream &start, const SampledStream &places, std::int64_t rest)
{
    const SampledStream &like = places.seconds > 0 ? places : start;
    if (rest <= 0 || like.bytes <= 0) return start.seconds;
    return start.seconds +
           like.seconds * static_cast<double>(rest) / static_cast<double>(like.bytes);
}

/// @param places  in the rest of the file, where the start isn't all of it
void takeRate(PlayedStream &stream, const SampledStream &start, const SampledStream &places)
{
    stream.rate.sampled = rateOf(places.seconds > 0 ? places : start);
    // where all frames of an MP3 stream name the same rate, that is said often enough
    if (isOpenMp3(stream) && std::has_single_bit(start.rateCodes | places.rateCodes))
        stream.rate.stated = stream.stream->codecpar->bit_rate;
}

/// Where the pictures' times are all that is asked for, the rest needn't be taken apart.
void passOverSound(AVFormatContext &context)
{
    for (unsigned i = 0; i < context.nb_streams; ++i)
        if (!isVideo(*context.streams[i])) context.streams[i]->discard = AVDISCARD_ALL;
}

/// Looks at packets for what the headers left open; at none when there is nothing.
void takeSamples(Survey &survey)
{
    constexpr std::int64_t kMostForPlaces = 16'000'000;

    AVFormatContext &context = *survey.file.context();
    const bool rates = needsRates(survey);
    survey.start.resize(context.nb_streams);
    if (!rates && !needsTimes(survey)) return;
    if (!rates) passOverSound(context);
    const Reading reading = readingFor(survey);
    PacketSample start = samplePackets(context, reading.start);
    survey.start = std::move(start.streams);
    if (!rates) return;

    const bool bare = isBareStream(survey);
    const SampledStream &first = survey.startOf(survey.played[0]);
    const std::int64_t rest =
        start.isWhole ? 0 : playedBytes(survey.file) - (bare ? first.bytes : 0);
    std::vector<SampledStream> places(survey.start.size());
    if (rest > 0) {
        survey.file.limitReading(kMostForPlaces);
        places = samplePlaces(context, rest, reading.place);
    }
    for (PlayedStream &stream : survey.played)
        takeRate(stream, survey.startOf(stream), places[indexOf(stream)]);
    if (!bare) return;
    survey.duration = countedDuration(first, places[indexOf(survey.played[0])], rest);
    survey.played[0].rate.sampled = wholeBitrate(survey);
}

void settleBitRates(Survey &survey)
{
    std::vector<StreamRate> rates;
    rates.reserve(survey.played.size());
    for (const PlayedStream &stream : survey.played) rates.push_back(stream.rate);
    settleBitRates(rates, wholeBitrate(survey));
    for (std::size_t i = 0; i < rates.size(); ++i) survey.played[i].rate = rates[i];
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
    const AVDictionaryEntry *language =
        av_dict_get(played.stream->metadata, "language", nullptr, 0);
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
        .language = language ? language->value : "",
    };
}

MediaInfo describe(Survey survey)
{
    takeSamples(survey);
    settleBitRates(survey);

    ContainerIdentity container = identifyContainer(survey.file);
    MediaInfo media;
    media.formatId = container.formatId;
    media.containerName = std::move(container.name);
    media.duration = survey.duration;
    media.stillImage = isPictureContainer(survey.file);
    for (const PlayedStream &stream : survey.played)
        if (!stream.rate.isVideo)
            media.audio.push_back(describeAudio(stream, static_cast<int>(media.audio.size()) + 1));
        else if (!media.video)
            media.video =
                describeVideo(stream, gatherPictureFacts(*survey.file.context(), stream.stream,
                                                         survey.startOf(stream)));
    return media;
}

} // namespace

ProbeResult probeMedia(const std::string &path)
{
    MediaFile file(path);
    if (!file.context()) return {std::nullopt, file.error()};
    std::vector<PlayedStream> played = playedStreams(file);
    if (played.empty()) return {std::nullopt, "holds neither audio nor video"};
    if (std::ranges::none_of(played, hasParameters)) return {std::nullopt, kNotMedia};
    const double duration = statedDuration(file, played);
    return {describe({file, std::move(played), duration, {}}), {}};
}

} // namespace vornak::tool

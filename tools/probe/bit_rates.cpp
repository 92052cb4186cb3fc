#include "tools/probe/bit_rates.h"

#include "tools/probe/media_file.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

/// Whether the rate that libavformat has for a stream, unless by a header, is that of the first
/// frames alone: each has a rate of its own. An MP3 file whose first frame counts the others
/// has told by then that they don't differ.
bool isRateOfFirstFrames(const AVFormatContext &context, const AVCodecParameters &parameters)
{
    if (parameters.codec_id == AV_CODEC_ID_MP3)
        return std::string_view(context.iformat->name) != "mp3" || guessesDuration(context);
    // FLV holds no frames with headers, but says a rate once its header is over
    return parameters.codec_id == AV_CODEC_ID_AAC_LATM ||
           (parameters.codec_id == AV_CODEC_ID_AAC &&
            std::string_view(context.iformat->name) != "flv");
}

/// What Matroska's authoring tools have counted; 0: nothing.
std::int64_t taggedBitrate(const AVStream &stream)
{
    for (const char *key : {"BPS", "BPS-eng"})
        if (const AVDictionaryEntry *tag = av_dict_get(stream.metadata, key, nullptr, 0))
            return std::strtoll(tag->value, nullptr, 10);
    return 0;
}

/// MPEG-1 says with this that its rate varies.
constexpr std::int64_t kVariableRate = std::int64_t{0x3FFFF} * 400;

int clampRate(std::int64_t rate)
{
    return static_cast<int>(std::clamp<std::int64_t>(rate, 1, std::numeric_limits<int>::max()));
}

/// The stream that takes what the others leave, or null.
StreamRate *findTakerOfRest(std::span<StreamRate> streams)
{
    StreamRate *taker = nullptr;
    for (StreamRate &stream : streams) {
        if (stream.stated > 0 || (!stream.isVideo && stream.sampled > 0)) continue;
        if (!taker || (stream.isVideo && !taker->isVideo)) taker = &stream;
    }
    return taker;
}

} // namespace

std::int64_t statedBitrate(const MediaFile &file, const AVStream &stream)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    if (const std::int64_t tagged = taggedBitrate(stream); tagged > 0) return tagged;
    if (const std::int64_t header = file.headerBitrate(stream.index); header > 0) return header;
    if (parameters.bit_rate > 0 && parameters.bit_rate != kVariableRate &&
        !isRateOfFirstFrames(*file.context(), parameters))
        return parameters.bit_rate;
    return std::int64_t{av_get_exact_bits_per_sample(parameters.codec_id)} *
           parameters.sample_rate * parameters.ch_layout.nb_channels;
}

bool guessesDuration(const AVFormatContext &context)
{
    return context.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
}

void settleBitRates(std::span<StreamRate> streams, std::int64_t whole)
{
    StreamRate *taker = findTakerOfRest(streams);
    std::int64_t rest = whole;
    for (StreamRate &stream : streams) {
        stream.estimated = stream.stated <= 0;
        const std::int64_t rate = stream.estimated ? stream.sampled : stream.stated;
        stream.bitrate = clampRate(rate);
        if (&stream != taker) rest -= rate;
    }
    // what the others leave can't be right when it is next to nothing
    if (taker && (rest > taker->sampled / 2 || taker->sampled <= 0))
        taker->bitrate = clampRate(rest);
}

} // namespace vornak::tool

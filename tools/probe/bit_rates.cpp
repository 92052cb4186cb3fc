#include "tools/probe/bit_rates.h"

#include "tools/probe/media_file.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

/// The extension of a DTS frame comes behind the frame, which says nothing of it.
bool hasDtsExtension(const AVCodecParameters &parameters)
{
    return parameters.profile == FF_PROFILE_DTS_HD_HRA ||
           parameters.profile == FF_PROFILE_DTS_HD_MA ||
           parameters.profile == FF_PROFILE_DTS_EXPRESS;
}

std::int64_t namedRate(const AVCodecParameters &parameters)
{
    switch (parameters.codec_id) {
    case AV_CODEC_ID_AC3:
    case AV_CODEC_ID_MP1:
    case AV_CODEC_ID_MP2:
        return parameters.bit_rate;
    case AV_CODEC_ID_DTS:
        return hasDtsExtension(parameters) ? 0 : parameters.bit_rate;
    default: // PCM
        return std::int64_t{av_get_exact_bits_per_sample(parameters.codec_id)} *
               parameters.sample_rate * parameters.ch_layout.nb_channels;
    }
}

/// What Matroska's authoring tools have counted; 0: nothing.
std::int64_t taggedRate(const AVStream &stream)
{
    for (const char *key : {"BPS", "BPS-eng"})
        if (const AVDictionaryEntry *tag = av_dict_get(stream.metadata, key, nullptr, 0))
            return std::strtoll(tag->value, nullptr, 10);
    return 0;
}

/// What libavformat has found out since: from the sequence header of a video, or FLV's script. Of
/// other sound it is the rate of the first frames.
std::int64_t lateRate(const MediaFile &file, const AVCodecParameters &parameters)
{
    const bool isStated = parameters.codec_type == AVMEDIA_TYPE_VIDEO ||
                          std::string_view(file.context()->iformat->name) == "flv";
    return isStated && parameters.codec_id != AV_CODEC_ID_MP3 ? parameters.bit_rate : 0;
}

std::int64_t headerRate(const MediaFile &file, const AVStream &stream)
{
    constexpr std::int64_t kMostOfMp3 = 320'000;

    if (const std::int64_t tagged = taggedRate(stream); tagged > 0) return tagged;
    const std::int64_t header = file.headerBitrate(stream.index);
    if (stream.codecpar->codec_id == AV_CODEC_ID_MP3 && header > kMostOfMp3) return 0;
    return header > 0 ? header : lateRate(file, *stream.codecpar);
}

int clampRate(std::int64_t rate)
{
    return static_cast<int>(std::clamp<std::int64_t>(rate, 1, std::numeric_limits<int>::max()));
}

bool isOpen(const StreamRate &stream)
{
    return stream.stated() <= 0;
}

/// The stream that takes what the others leave, or null: a video, or what is open alone. Of several
/// sounds that were seen, none.
const StreamRate *findTakerOfRest(std::span<const StreamRate> streams)
{
    const bool isAlone = std::ranges::count_if(streams, isOpen) == 1;
    const StreamRate *taker = nullptr;
    for (const StreamRate &stream : streams) {
        if (!isOpen(stream) || (!stream.isVideo && stream.sampled > 0 && !isAlone)) continue;
        if (!taker || (stream.isVideo && !taker->isVideo)) taker = &stream;
    }
    return taker;
}

std::int64_t restFor(const StreamRate *taker, std::span<const StreamRate> streams,
                     std::int64_t whole)
{
    std::int64_t rest = whole;
    for (const StreamRate &stream : streams)
        if (&stream != taker) rest -= isOpen(stream) ? stream.sampled : stream.stated();
    return rest;
}

bool agree(std::int64_t rest, std::int64_t sampled, const WholeRate &whole)
{
    const double times = static_cast<double>(rest) / static_cast<double>(sampled);
    return rest > 0 && (sampled <= 0 || (times > whole.least && times < whole.most));
}

} // namespace

StreamRate statedRate(const MediaFile &file, const AVStream &stream)
{
    return {.named = namedRate(*stream.codecpar),
            .header = headerRate(file, stream),
            .isVideo = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO};
}

StreamTable readTable(AVStream &stream)
{
    const int count = avformat_index_get_entries_count(&stream);
    StreamTable table;
    for (int i = 0; i < count; ++i) table.bytes += avformat_index_get_entry(&stream, i)->size;
    if (count < 2) return table; // the last entry doesn't say how long it lasts
    const double unit = av_q2d(stream.time_base);
    const double told = static_cast<double>(stream.duration) * unit;
    const double span =
        static_cast<double>(avformat_index_get_entry(&stream, count - 1)->timestamp -
                            avformat_index_get_entry(&stream, 0)->timestamp) *
        unit;
    const double gap = span / (count - 1);
    table.seconds = std::abs(told - span) <= 2 * gap ? told : span + gap;
    return table;
}

bool fitFile(std::span<const StreamRate> streams, double bytes, double seconds)
{
    double stated = 0;
    for (const StreamRate &stream : streams) {
        const std::int64_t rate = stream.stated();
        if (rate <= 0) return false;
        stated += static_cast<double>(rate) * seconds / 8;
    }
    const double part = stated / bytes;
    return part >= 0.9 && part <= 1.03;
}

bool guessesDuration(const AVFormatContext &context)
{
    return context.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
}

bool isBelievable(const WholeRate &whole, std::span<const StreamRate> streams)
{
    const StreamRate *taker = findTakerOfRest(streams);
    return whole.rate > 0 &&
           (!taker || agree(restFor(taker, streams, whole.rate), taker->sampled, whole));
}

void settleBitRates(std::span<StreamRate> streams, const WholeRate &whole)
{
    const StreamRate *taker = isBelievable(whole, streams) ? findTakerOfRest(streams) : nullptr;
    const std::int64_t rest = restFor(taker, streams, whole.rate);
    for (StreamRate &stream : streams) {
        stream.estimated = isOpen(stream);
        stream.bitrate = clampRate(&stream == taker   ? rest
                                   : stream.estimated ? stream.sampled
                                                      : stream.stated());
    }
}

} // namespace vornak::tool

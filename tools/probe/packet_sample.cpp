#include "probe/packet_sample.h"

#include "probe/h264_fields.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

// What libavformat has looked at already makes the greater part of this.
constexpr int kMostPackets = 250;
constexpr std::int64_t kMostBytes = 4'000'000;

struct FreePacket {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

/// Without a duration in the packets: the distance of the first from the last, and one more.
double spanInSeconds(const std::vector<std::int64_t> &times, AVRational timeBase)
{
    if (times.size() < 2) return 0;
    const auto distance = static_cast<double>(times.back() - times.front());
    const auto gaps = static_cast<double>(times.size() - 1);
    return distance * (gaps + 1) / gaps * av_q2d(timeBase);
}

/// A stream while its packets come in.
struct Sampling {
    SampledStream found;
    std::optional<H264Fields> fields; ///< until some pictures were seen
    int packets = 0;
};

std::vector<Sampling> startSampling(const AVFormatContext &context)
{
    std::vector<Sampling> streams(context.nb_streams);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const AVCodecParameters &parameters = *context.streams[i]->codecpar;
        if (parameters.codec_id == AV_CODEC_ID_H264) streams[i].fields.emplace(parameters);
    }
    return streams;
}

void addPacket(Sampling &stream, const AVPacket &packet, AVRational timeBase)
{
    constexpr int kPicturesForFields = 4;

    stream.found.bytes += packet.size;
    stream.found.seconds += static_cast<double>(packet.duration) * av_q2d(timeBase);
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (time != AV_NOPTS_VALUE) stream.found.times.push_back(time);
    if (!stream.fields || ++stream.packets > kPicturesForFields) return;
    stream.fields->add({packet.data, static_cast<std::size_t>(packet.size)});
    stream.found.interlaced = stream.fields->isInterlaced();
}

SampledStream finish(Sampling &&stream, AVRational timeBase)
{
    std::ranges::sort(stream.found.times);
    if (stream.found.seconds <= 0)
        stream.found.seconds = spanInSeconds(stream.found.times, timeBase);
    return std::move(stream.found);
}

} // namespace

std::vector<SampledStream> samplePackets(AVFormatContext &context)
{
    std::vector<Sampling> streams = startSampling(context);
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    std::int64_t bytes = 0;
    for (int i = 0; i < kMostPackets && bytes < kMostBytes; ++i) {
        if (av_read_frame(&context, packet.get()) < 0) break;
        const auto index = static_cast<std::size_t>(packet->stream_index);
        // a stream that turns up late has no place
        if (index < streams.size())
            addPacket(streams[index], *packet, context.streams[index]->time_base);
        bytes += packet->size;
        av_packet_unref(packet.get());
    }
    std::vector<SampledStream> found;
    for (std::size_t i = 0; i < streams.size(); ++i)
        found.push_back(finish(std::move(streams[i]), context.streams[i]->time_base));
    return found;
}

} // namespace vornak::tool

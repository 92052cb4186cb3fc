#include "tools/probe/packet_sample.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

struct Free {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); }
};

/// Whether an H.264 stream is interlaced, by its pictures. Containers that say so are not always
/// right: a muxer passes on what it was told of the pictures before they were encoded.
class H264Fields {
public:
    explicit H264Fields(const AVCodecParameters &parameters)
        : context_(avcodec_alloc_context3(nullptr)), parser_(av_parser_init(AV_CODEC_ID_H264))
    {
        if (!context_ || !parser_) throw std::bad_alloc();
        if (avcodec_parameters_to_context(context_.get(), &parameters) < 0) throw std::bad_alloc();
        parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    }

    /// Looks at a packet of the stream, as its container stores it.
    void add(const AVPacket &packet)
    {
        std::uint8_t *unit = nullptr;
        int size = 0;
        av_parser_parse2(parser_.get(), context_.get(), &unit, &size, packet.data, packet.size,
                         AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
        interlaced_ |= parser_->field_order != AV_FIELD_UNKNOWN &&
                       parser_->field_order != AV_FIELD_PROGRESSIVE;
    }

    bool isInterlaced() const { return interlaced_; }

private:
    std::unique_ptr<AVCodecContext, Free> context_;
    std::unique_ptr<AVCodecParserContext, Free> parser_;
    bool interlaced_ = false;
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
    int packets = 0, timed = 0;       ///< `timed`: those that say how long they last
    bool skip = false; ///< the next packet: behind a jump it may be what is left of one
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

/// Bits 4 to 7 of the third byte; 0 means a rate of its own, 15 none.
unsigned rateCode(const AVPacket &packet)
{
    const bool isFrame =
        packet.size >= 4 && packet.data[0] == 0xFF && (packet.data[1] & 0xE0) == 0xE0;
    return isFrame ? 1U << (packet.data[2] >> 4) : 0;
}

void addPacket(Sampling &stream, const AVPacket &packet, const AVStream &source)
{
    constexpr int kPicturesForFields = 4;

    stream.found.bytes += packet.size;
    stream.found.seconds += static_cast<double>(packet.duration) * av_q2d(source.time_base);
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (time != AV_NOPTS_VALUE) stream.found.times.push_back(time);
    if (source.codecpar->codec_id == AV_CODEC_ID_MP3) stream.found.rateCodes |= rateCode(packet);
    stream.timed += packet.duration > 0 ? 1 : 0;
    if (++stream.packets > kPicturesForFields || !stream.fields) return;
    stream.fields->add(packet);
    stream.found.interlaced = stream.fields->isInterlaced();
}

SampledStream finish(Sampling &&stream, AVRational timeBase)
{
    std::ranges::sort(stream.found.times);
    if (stream.timed > 0)
        stream.found.seconds *= static_cast<double>(stream.packets) / stream.timed;
    else
        stream.found.seconds = spanInSeconds(stream.found.times, timeBase);
    return std::move(stream.found);
}

PacketSample readPackets(AVFormatContext &context, std::vector<Sampling> streams, SampleSize most)
{
    const std::unique_ptr<AVPacket, Free> packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    PacketSample sample;
    std::int64_t bytes = 0;
    for (int i = 0; i < most.packets && bytes < most.bytes; ++i) {
        sample.isWhole = av_read_frame(&context, packet.get()) < 0;
        if (sample.isWhole) break;
        const auto index = static_cast<std::size_t>(packet->stream_index);
        // a stream that turns up late has no place
        if (index < streams.size() && !std::exchange(streams[index].skip, false))
            addPacket(streams[index], *packet, *context.streams[index]);
        bytes += packet->size;
        av_packet_unref(packet.get());
    }
    for (std::size_t i = 0; i < streams.size(); ++i)
        sample.streams.push_back(finish(std::move(streams[i]), context.streams[i]->time_base));
    return sample;
}

/// Streams of frames and broadcasts are found again from any byte; the others know their times.
bool isSoughtByBytes(const AVFormatContext &context)
{
    return (context.iformat->flags & (AVFMT_GENERIC_INDEX | AVFMT_TS_DISCONT)) != 0;
}

bool seekToByte(AVFormatContext &context, std::int64_t byte)
{
    return av_seek_frame(&context, -1, byte, AVSEEK_FLAG_BYTE) >= 0;
}

/// Not to key frames alone: where seconds lie between them, all places might be the same.
bool seekToTime(AVFormatContext &context, std::int64_t time)
{
    return time > 0 &&
           av_seek_frame(&context, -1, time, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY) >= 0;
}

} // namespace

PacketSample samplePackets(AVFormatContext &context, SampleSize most)
{
    return readPackets(context, startSampling(context), most);
}

std::vector<SampledStream> samplePlaces(AVFormatContext &context, std::int64_t bytes,
                                        std::int64_t bytesEach)
{
    constexpr int kPlaces = 8;
    constexpr SampleSize kSizeInTime = {100, 1'000'000};

    const bool byBytes = isSoughtByBytes(context);
    const std::int64_t part = bytes / kPlaces, taken = std::min(part, bytesEach);
    const std::int64_t first = avio_size(context.pb) - bytes + (part - taken) / 2;
    const SampleSize size = byBytes ? SampleSize{kAnyNumber, taken} : kSizeInTime;
    std::vector<SampledStream> sum(context.nb_streams);
    for (int place = 0; place < kPlaces; ++place) {
        const std::int64_t time = context.duration / (2 * kPlaces) * (2 * place + 1);
        if (!(byBytes ? seekToByte(context, first + part * place) : seekToTime(context, time)))
            break;
        std::vector<Sampling> streams(sum.size());
        for (Sampling &stream : streams) stream.skip = true;
        const PacketSample sample = readPackets(context, std::move(streams), size);
        for (std::size_t i = 0; i < sum.size(); ++i) {
            sum[i].bytes += sample.streams[i].bytes;
            sum[i].seconds += sample.streams[i].seconds;
            sum[i].rateCodes |= sample.streams[i].rateCodes;
        }
    }
    return sum;
}

} // namespace vornak::tool

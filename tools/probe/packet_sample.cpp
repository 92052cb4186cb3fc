#include "tools/probe/packet_sample.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
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

/// Whether an H.264 stream is interlaced, by its pictures. A Matroska file that says that it isn't
/// may be wrong: a muxer passes on what it was told of the pictures before they were encoded.
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

/// From the first to the last, and one gap more.
double spanInSeconds(const PictureTimes &times, AVRational timeBase)
{
    if (times.size() < 2) return 0;
    const auto distance = static_cast<double>(times.back() - times.front());
    const auto gaps = static_cast<double>(times.size() - 1);
    return distance * (gaps + 1) / gaps * av_q2d(timeBase);
}

/// A stream while its packets come in.
struct Sampling {
    SampledStream found;
    PictureTimes times;
    std::optional<H264Fields> fields; ///< until some pictures were seen
    int timed = 0;                    ///< packets that say how long they last
    bool skip = false; ///< the next packet: behind a jump it may be what is left of one
};

/// In other files libavformat goes by the pictures.
bool mayHideFields(const AVFormatContext &context, const AVCodecParameters &parameters)
{
    const bool isUntold = parameters.field_order == AV_FIELD_UNKNOWN ||
                          parameters.field_order == AV_FIELD_PROGRESSIVE;
    return parameters.codec_id == AV_CODEC_ID_H264 && isUntold &&
           std::string_view(context.iformat->name) == "matroska,webm";
}

std::vector<Sampling> startSampling(const AVFormatContext &context)
{
    std::vector<Sampling> streams(context.nb_streams);
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const AVCodecParameters &parameters = *context.streams[i]->codecpar;
        if (mayHideFields(context, parameters)) streams[i].fields.emplace(parameters);
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

/// Zeros behind the last frame of a file that are no part of it: far more than any filling.
int zerosAtEnd(const AVPacket &packet)
{
    constexpr int kFew = 64 * 1024;

    int zeros = 0;
    while (zeros < packet.size && packet.data[packet.size - zeros - 1] == 0) ++zeros;
    return zeros > kFew ? zeros : 0;
}

bool isVideo(const AVStream &stream)
{
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
}

void addPacket(Sampling &stream, const AVPacket &packet, const AVStream &source)
{
    constexpr int kPicturesForFields = 4;

    stream.found.bytes += packet.size - zerosAtEnd(packet);
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    // two pictures that are packed into one have the same time, and last once
    if (!isVideo(source) || stream.times.empty() || time != stream.times.back())
        stream.found.seconds += static_cast<double>(packet.duration) * av_q2d(source.time_base);
    if (time != AV_NOPTS_VALUE) stream.times.push_back(time);
    stream.found.end = (packet.pos >= 0 ? packet.pos : stream.found.end) + packet.size;
    if (source.codecpar->codec_id == AV_CODEC_ID_MP3) stream.found.rateCodes |= rateCode(packet);
    stream.timed += packet.duration > 0 ? 1 : 0;
    if (++stream.found.packets > kPicturesForFields || !stream.fields) return;
    stream.fields->add(packet);
    stream.found.interlaced = stream.fields->isInterlaced();
}

/// Which ends of a sample are not the file's.
struct Ends {
    bool first, last;
};

/// Packets come in coding order: at an end that is not the file's, pictures are missing between
/// the last ones. No decoder holds more than 16 back.
PictureTimes withoutMissing(PictureTimes times, Ends open)
{
    constexpr std::ptrdiff_t kMostReordered = 16;

    const std::ptrdiff_t left = open.first ? kMostReordered : 0;
    const std::ptrdiff_t right = open.last ? kMostReordered : 0;
    if (std::ssize(times) <= left + right) return {};
    return {times.begin() + left, times.end() - right};
}

/// How long the packets last: as they say, or of pictures, whose pace may change, by their times
/// where they all lie on one line.
double secondsOf(const Sampling &stream, const AVFormatContext &context, const AVStream &source)
{
    const double span = spanInSeconds(stream.times, source.time_base);
    if (stream.timed == 0) return span;
    const double told = stream.found.seconds * stream.found.packets / stream.timed;
    return isVideo(source) && !isSoughtByBytes(context) ? std::max(told, span) : told;
}

SampledStream finish(Sampling &&stream, const AVFormatContext &context, const AVStream &source,
                     Ends open)
{
    std::ranges::sort(stream.times);
    stream.found.seconds = secondsOf(stream, context, source);
    stream.found.times = {withoutMissing(std::move(stream.times), open)};
    return std::move(stream.found);
}

PacketSample readPackets(AVFormatContext &context, std::vector<Sampling> streams, SampleSize most)
{
    const std::unique_ptr<AVPacket, Free> packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    PacketSample sample;
    std::int64_t bytes = 0;
    std::optional<double> begin;
    const bool isPlace = !streams.empty() && streams.front().skip;
    for (int i = 0; i < most.packets && bytes < most.bytes; ++i) {
        sample.isComplete = av_read_frame(&context, packet.get()) < 0;
        if (sample.isComplete) break;
        const auto index = static_cast<std::size_t>(packet->stream_index);
        // a stream that turns up late has no place
        if (index < streams.size() && !std::exchange(streams[index].skip, false))
            addPacket(streams[index], *packet, *context.streams[index]);
        bytes += packet->size;
        if (!begin && packet->dts != AV_NOPTS_VALUE)
            begin = static_cast<double>(packet->dts) *
                    av_q2d(context.streams[packet->stream_index]->time_base);
        av_packet_unref(packet.get());
    }
    sample.begin = begin.value_or(0);
    for (std::size_t i = 0; i < streams.size(); ++i)
        sample.streams.push_back(finish(std::move(streams[i]), context, *context.streams[i],
                                        {isPlace, !sample.isComplete}));
    return sample;
}

bool seekToByte(AVFormatContext &context, std::int64_t byte)
{
    return av_seek_frame(&context, -1, byte, AVSEEK_FLAG_BYTE) >= 0;
}

/// Not to key frames alone: where seconds lie between them, all places might be the same.
bool seekToTime(AVFormatContext &context, double seconds)
{
    const auto time = static_cast<std::int64_t>(seconds * AV_TIME_BASE);
    return time > 0 &&
           av_seek_frame(&context, -1, time, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY) >= 0;
}

void addPlace(PacketSample &sum, PacketSample place)
{
    for (std::size_t i = 0; i < sum.streams.size(); ++i) {
        SampledStream &stream = sum.streams[i], &more = place.streams[i];
        stream.bytes += more.bytes;
        stream.packets += more.packets;
        stream.seconds += more.seconds;
        stream.rateCodes |= more.rateCodes;
        stream.times.push_back(std::move(more.times.front()));
    }
}

} // namespace

std::int64_t PacketSample::bytes() const
{
    std::int64_t sum = 0;
    for (const SampledStream &stream : streams) sum += stream.bytes;
    return sum;
}

const SampledStream &PacketSample::of(const AVStream &stream) const
{
    static const SampledStream nothing;
    const auto index = static_cast<std::size_t>(stream.index);
    return index < streams.size() ? streams[index] : nothing;
}

PacketSample samplePackets(AVFormatContext &context, SampleSize most)
{
    return readPackets(context, startSampling(context), most);
}

/// Streams of frames and broadcasts are found again from any byte; the others know their times.
bool isSoughtByBytes(const AVFormatContext &context)
{
    constexpr std::string_view lost[] = {"gif", "ivf", "wv"}; // their frames have no sign

    return (context.iformat->flags & (AVFMT_GENERIC_INDEX | AVFMT_TS_DISCONT)) != 0 &&
           std::ranges::find(lost, context.iformat->name) == std::end(lost);
}

PacketSample samplePlaces(AVFormatContext &context, Stretch stretch, std::int64_t bytesEach)
{
    constexpr int kPlaces = 8;
    constexpr SampleSize kSizeInTime = {100, 1'000'000};

    const bool byBytes = isSoughtByBytes(context);
    const std::int64_t part = stretch.bytes / kPlaces, taken = std::min(part, bytesEach);
    const std::int64_t first = avio_size(context.pb) - stretch.bytes + (part - taken) / 2;
    const SampleSize size = byBytes ? SampleSize{kAnyNumber, taken} : kSizeInTime;
    const std::int64_t start = context.start_time == AV_NOPTS_VALUE ? 0 : context.start_time;
    PacketSample sum;
    sum.streams.resize(context.nb_streams);
    int found = 0;
    for (int place = 0; place < kPlaces; ++place) {
        const double time = static_cast<double>(start) / AV_TIME_BASE +
                            stretch.seconds * (2 * place + 1) / (2 * kPlaces);
        if (!(byBytes ? seekToByte(context, first + part * place) : seekToTime(context, time)))
            return {};
        std::vector<Sampling> streams(sum.streams.size());
        for (Sampling &stream : streams) stream.skip = true;
        PacketSample sample = readPackets(context, std::move(streams), size);
        // some seek to the last frame that they know of
        const bool isThere = byBytes ? sample.bytes() > 0
                                     : std::abs(sample.begin - time) < stretch.seconds / kPlaces;
        if (!isThere) continue;
        addPlace(sum, std::move(sample));
        ++found;
    }
    sum.isComplete = found == kPlaces;
    return 2 * found < kPlaces ? PacketSample{} : sum;
}

} // namespace vornak::tool

#include "tools/transcode/stream_ends.h"

#include "tools/probe/media_file.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

struct FreePacket {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

double inSeconds(std::int64_t time, AVRational timeBase)
{
    return time == AV_NOPTS_VALUE ? 0 : static_cast<double>(time) * av_q2d(timeBase);
}

double endOf(const AVPacket &packet, const AVStream &stream)
{
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    return time == AV_NOPTS_VALUE ? 0 : inSeconds(time + packet.duration, stream.time_base);
}

/// When the last packet begins that the container's index names.
double lastIndexed(AVStream &stream)
{
    const int count = avformat_index_get_entries_count(&stream);
    const AVIndexEntry *last = count > 0 ? avformat_index_get_entry(&stream, count - 1) : nullptr;
    return last ? inSeconds(last->timestamp, stream.time_base) : 0;
}

bool isWanted(const AVStream &stream, int &audioTrack, bool &hasVideo)
{
    if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) return audioTrack-- == 0;
    if (stream.codecpar->codec_type != AVMEDIA_TYPE_VIDEO || hasVideo) return false;
    hasVideo = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
    return hasVideo;
}

/// The streams to look at; the demuxer drops the others.
std::vector<AVStream *> select(AVFormatContext &context, int audioTrack)
{
    std::vector<AVStream *> wanted;
    bool hasVideo = false;
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        AVStream *const stream = context.streams[i];
        if (isWanted(*stream, audioTrack, hasVideo))
            wanted.push_back(stream);
        else
            stream->discard = AVDISCARD_ALL;
    }
    return wanted;
}

/// Reads to the end of the file; moves the ends on.
void readOn(AVFormatContext &context, std::vector<double> &ends)
{
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    while (av_read_frame(&context, packet.get()) >= 0) {
        const auto index = static_cast<std::size_t>(packet->stream_index);
        if (index < ends.size())
            ends[index] = std::max(ends[index], endOf(*packet, *context.streams[index]));
        av_packet_unref(packet.get());
    }
}

/// When each stream ends.
std::vector<double> readEnds(AVFormatContext &context, const std::vector<AVStream *> &wanted)
{
    std::vector<double> ends(context.nb_streams);
    const auto isMissing = [&](const AVStream *s) { return ends[std::size_t(s->index)] <= 0; };
    const std::int64_t duration = std::max<std::int64_t>(context.duration, 0);
    const std::int64_t end = duration + std::max<std::int64_t>(context.start_time, 0);
    // Some streams end long before the others, and what the header says may be far too much.
    for (std::int64_t tail = 10LL * AV_TIME_BASE;; tail *= 8) {
        const bool all = tail >= duration;
        av_seek_frame(&context, -1, all ? 0 : end - tail, AVSEEK_FLAG_BACKWARD);
        readOn(context, ends);
        if (all || std::ranges::none_of(wanted, isMissing)) return ends;
    }
}

} // namespace

std::optional<StreamEnds> findStreamEnds(const std::string &path, int audioTrack)
{
    constexpr std::int64_t kMostRead = 1'000'000'000; // of a file that can't be sought in

    MediaFile file(path, Search::Usual);
    AVFormatContext *const context = file.context();
    if (!context) return std::nullopt;
    file.limitReading(kMostRead);
    const std::vector<AVStream *> wanted = select(*context, audioTrack);
    const std::vector<double> read = readEnds(*context, wanted);
    StreamEnds ends;
    ends.start = inSeconds(context->start_time, {1, AV_TIME_BASE});
    ends.stated = inSeconds(context->duration, {1, AV_TIME_BASE});
    ends.hasBreaks = (context->iformat->flags & AVFMT_TS_DISCONT) != 0;
    ends.hasTimes = ends.hasBreaks || (context->iformat->flags & AVFMT_GENERIC_INDEX) == 0;
    ends.isRead = !file.isAtLimit();
    if (!ends.isRead) return ends;
    for (AVStream *const stream : wanted) {
        const double end = std::max(read[std::size_t(stream->index)], lastIndexed(*stream));
        const bool isVideo = stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        (isVideo ? ends.video : ends.audio) = end;
    }
    return ends;
}

} // namespace vornak::tool

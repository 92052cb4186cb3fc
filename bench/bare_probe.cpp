// What `vornak decide` is compared with: opens each file of a folder with libavformat, finds its
// streams, reads its packets and closes it, on as many threads as asked for.
//   bare_probe FOLDER THREADS PACKETS    "none", "all" or "pictures"
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

extern "C" {
#include <libavcodec/packet.h>
#include <libavformat/avformat.h>
}

namespace {

/// Reads to the end. Without sound, that is passed over as demuxers can.
void readPackets(AVFormatContext &format, bool sound)
{
    for (AVStream *stream : std::span(format.streams, format.nb_streams))
        if (!sound && stream->codecpar->codec_type != AVMEDIA_TYPE_VIDEO)
            stream->discard = AVDISCARD_ALL;
    AVPacket *packet = av_packet_alloc();
    while (av_read_frame(&format, packet) >= 0) av_packet_unref(packet);
    av_packet_free(&packet);
}

bool probe(const std::string &path, std::string_view packets)
{
    AVFormatContext *format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) return false;
    const bool found = avformat_find_stream_info(format, nullptr) >= 0;
    if (found && packets != "none") readPackets(*format, packets == "all");
    avformat_close_input(&format);
    return found;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) return 2;
    const std::string_view packets = argv[3];
    av_log_set_level(AV_LOG_QUIET);
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(argv[1]))
        files.push_back(entry.path());

    std::atomic<std::size_t> next{0}, done{0};
    std::vector<std::jthread> threads;
    for (int i = std::atoi(argv[2]); i > 0; --i)
        threads.emplace_back([&] {
            for (std::size_t file = next++; file < files.size(); file = next++)
                if (probe(files[file], packets)) ++done;
        });
    threads.clear();
    return done == files.size() ? 0 : 1;
}

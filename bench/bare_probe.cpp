// What `vornak decide` is compared with: opens each file of a folder with libavformat, finds its
// streams and closes it, on as many threads as asked for. Prints the number of files.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

bool probe(const std::string &path)
{
    AVFormatContext *format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) return false;
    const bool found = avformat_find_stream_info(format, nullptr) >= 0;
    avformat_close_input(&format);
    return found;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) return 2;
    av_log_set_level(AV_LOG_QUIET);
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(argv[1]))
        files.push_back(entry.path());

    std::atomic<std::size_t> next{0}, done{0};
    std::vector<std::jthread> threads;
    for (int i = std::atoi(argv[2]); i > 0; --i)
        threads.emplace_back([&] {
            for (std::size_t file = next++; file < files.size(); file = next++)
                if (probe(files[file])) ++done;
        });
    threads.clear();
    std::printf("%zu\n", done.load());
}

// Scans of folders of 10,000 entries against bare readdir loops that make the same name test and
// the same stat calls. The kernel does most of the work, so time is measured: both sides take
// turns, and the fastest turn of each counts. Exit status 1 when a ratio is above its limit.
#include "include/vornak.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>

namespace vornak::bench {
namespace {

constexpr int kEntries = 10000;
constexpr double kLimit = 1.2;

/// Calls `use` with each name in a folder.
template <class Use>
void readNames(const std::string &folder, Use use)
{
    DIR *directory = opendir(folder.c_str());
    while (const dirent *entry = readdir(directory)) use(entry->d_name);
    closedir(directory);
}

std::int64_t sizeOf(const std::string &folder, const char *name)
{
    char path[1024];
    std::snprintf(path, sizeof path, "%s%s", folder.c_str(), name);
    struct stat info;
    return stat(path, &info) == 0 ? info.st_size : 0;
}

bool endsWith(const char *name, const char *end)
{
    const std::size_t length = std::strlen(name), tail = std::strlen(end);
    return length >= tail && strcasecmp(name + length - tail, end) == 0;
}

double milliseconds(const auto &work)
{
    const std::clock_t start = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// Measures, prints a row of the table and returns whether the ratio is within its limit.
bool compare(const char *name, const auto &library, const auto &bare)
{
    double ours = 1e9, theirs = 1e9;
    for (int turn = 0; turn < 60; ++turn) {
        ours = std::min(ours, milliseconds(library));
        theirs = std::min(theirs, milliseconds(bare));
    }
    const bool within = ours <= kLimit * theirs;
    std::fprintf(stderr,
                 "| %s, %d entries | a bare loop | %.2f ms | %.2f ms | %.2f | at most %.2f%s |\n",
                 name, kEntries, ours, theirs, ours / theirs, kLimit, within ? "" : " **missed**");
    return within;
}

/// Fills a folder with links to one file, each name a number between `before` and `after`.
std::string makeFolder(const test::TempDir &temp, const char *name, const char *before,
                       const char *after)
{
    namespace fs = std::filesystem;
    const std::string file = temp.write(std::string("files/") + name, "film");
    std::string folder = temp / (std::string(name) + "/");
    fs::create_directories(folder);
    for (int i = 0; i < kEntries; ++i)
        fs::create_hard_link(file, folder + before + std::to_string(i) + after);
    return folder;
}

bool compareSubtitles(const test::TempDir &temp)
{
    const std::string folder = makeFolder(temp, "videos", "Some film ", ".srt");
    VIDEO_SUBTITLE_ST list[VORNAK_SUBTITLE_LIST_SIZE];
    char path[VORNAK_SUBTITLE_PATH_SIZE];
    long found = 0;
    const auto bare = [&] {
        readNames(folder, [&](const char *name) { found += !std::strncmp(name, "Another", 7); });
    };
    // The list names its candidates on standard output, which is of no interest here.
    if (!std::freopen("/dev/null", "w", stdout)) return false;
    const bool listed = compare(
        "list a video's subtitles",
        [&] { findVideoSubtitles(folder.c_str(), "Another.mkv", list, 0); }, bare);
    return compare(
               "find a video's SRT file",
               [&] { findVideoSubtitle(folder.c_str(), "Another.mkv", path); }, bare) &&
           listed && found == 0;
}

bool isPart(const char *name)
{
    return std::strlen(name) >= 8 && strncasecmp(name, "VTS_", 4) == 0 && endsWith(name, ".VOB") &&
           name[7] >= '1' && name[7] <= '9';
}

bool compareDvd(const test::TempDir &temp, const char *what, const char *before, const char *after)
{
    const std::string folder = makeFolder(temp, what, before, after);
    temp.write(std::string(what) + "/VIDEO_TS.IFO", "");
    DVD_FORMAT_ST info;
    std::int64_t total = 0;
    return compare(
        what, [&] { parseDVDFormat(folder.c_str(), "VIDEO_TS.IFO", &info); },
        [&] {
            readNames(folder, [&](const char *name) {
                if (isPart(name)) total += sizeOf(folder, name);
            });
        });
}

bool compareBluray(const test::TempDir &temp)
{
    const std::string folder = makeFolder(temp, "BDMV/STREAM", "", ".m2ts");
    temp.write("BDMV/index.bdmv", "");
    BD_FORMAT_ST info;
    std::int64_t largest = 0;
    return compare(
        "a Blu-ray's largest stream",
        [&] { parseBDFormat((temp / "BDMV/").c_str(), "index.bdmv", &info); },
        [&] {
            readNames(folder, [&](const char *name) {
                if (endsWith(name, ".m2ts")) largest = std::max(largest, sizeOf(folder, name));
            });
        });
}

int run()
{
    const test::TempDir temp;
    bool within = compareSubtitles(temp);
    within &= compareDvd(temp, "a DVD's largest title", "VTS_01_1.", ".VOB");
    within &= compareDvd(temp, "a DVD's folder without parts", "film ", ".mpg");
    within &= compareBluray(temp);
    return within ? 0 : 1;
}

} // namespace
} // namespace vornak::bench

int main()
{
    return vornak::bench::run();
}

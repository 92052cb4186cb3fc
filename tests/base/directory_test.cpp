// Folders that can't be read to their end, and what the library makes of them.
#include "include/vornak.h"
#include "tests/support/capture.h"
#include "tests/support/leak_check.h"
#include "tests/support/readdir_fault.h"
#include "tests/support/temp_dir.h"

#include <cerrno>
#include <cstring>
#include <functional>

namespace vornak::test {
namespace {

class DirectoryTest : public LeakCheck {};

TEST_F(DirectoryTest, EachReadThatFailsIsTheFailureOfTheCall)
{
    const TempDir temp;
    for (const char *file : {"VIDEO_TS.IFO", "VTS_01_1.VOB", "index.bdmv", "STREAM/1.m2ts",
                             "film.de.srt", "film.vtt", "film.srt"})
        temp.write(file, "content");
    const std::string folder = temp / "", video = temp / "film.mkv";
    static union {
        DVD_FORMAT_ST dvd;
        BD_FORMAT_ST bluray;
        VIDEO_SUBTITLE_ST list[VORNAK_SUBTITLE_LIST_SIZE];
        char path[VORNAK_SUBTITLE_PATH_SIZE];
    } out;
    const struct {
        const char *function;
        std::function<int()> call;
        std::string left; ///< in the output that a failure leaves; then nothing but `fill`
        char fill;
    } cases[] = {
        {"parseDVDFormat", [&] { return parseDVDFormat(folder.c_str(), "VIDEO_TS.IFO", &out.dvd); },
         folder, '\0'},
        {"parseBDFormat", [&] { return parseBDFormat(folder.c_str(), "index.bdmv", &out.bluray); },
         "", '\0'},
        {"findVideoSubtitles",
         [&] { return findVideoSubtitles(folder.c_str(), "film.mkv", out.list, 0); }, "", '#'},
        {"findVideoSubtitlesByFullPath",
         [&] { return findVideoSubtitlesByFullPath(video.c_str(), out.list, 0); }, "", '#'},
        {"findVideoSubtitle",
         [&] { return findVideoSubtitle(folder.c_str(), "film.mkv", out.path); }, "", '#'},
    };
    const Capture traces(STDOUT_FILENO);
    for (const auto &c : cases) {
        readdirFault() = {};
        ASSERT_EQ(c.call(), 0) << c.function;
        const int calls = readdirFault().calls;
        EXPECT_GT(calls, 2);
        for (int failing = 1; failing <= calls; ++failing) {
            readdirFault() = {0, failing, EINTR}; // this one is tried again
            EXPECT_EQ(c.call(), 0) << c.function << failing;

            readdirFault() = {0, failing, EIO};
            std::memset(&out, c.fill, sizeof out);
            EXPECT_EQ(c.call(), 1) << c.function << failing;
            EXPECT_EQ(errno, EIO);
            EXPECT_EQ(std::string(reinterpret_cast<const char *>(&out), sizeof out),
                      c.left + std::string(sizeof out - c.left.size(), c.fill));
        }
    }
    readdirFault() = {};
}

} // namespace
} // namespace vornak::test

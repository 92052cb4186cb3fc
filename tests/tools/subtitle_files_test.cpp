// Names that are read once a folder, against the library that reads it for each video.
#include "tools/appliance/subtitle_files.h"

#include "include/vornak.h"
#include "tests/support/capture.h"
#include "tests/support/readdir_fault.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace vornak::test {
namespace {

tool::SubtitleSearch searchByTheLibrary(const std::string &folder, const std::string &video)
{
    const Capture trace(STDOUT_FILENO);
    VIDEO_SUBTITLE_ST list[VORNAK_SUBTITLE_LIST_SIZE];
    EXPECT_EQ(findVideoSubtitlesByFullPath((folder + video).c_str(), list, 0), 0);
    tool::SubtitleSearch found;
    for (const auto *one = list; one->type != VORNAK_SUBTITLE_END; ++one)
        found.files.push_back({one->fileName, one->type == VORNAK_SUBTITLE_SRT ? "srt" : "vtt",
                               std::string_view(one->lang) == "unkown" ? "" : one->lang});
    std::ranges::sort(found.files, {}, &tool::SubtitleFile::name);
    char plain[VORNAK_SUBTITLE_PATH_SIZE];
    if (findVideoSubtitle(folder.c_str(), video.c_str(), plain) == 0)
        found.plainSrt = plain + folder.size();
    return found;
}

TEST(SubtitleFiles, AreThoseThatTheLibraryLists)
{
    const char *const pieces[] = {"a", "ab", "B", ".", ".srt", ".SRT", ".vtt", ".srtx", "_en"};
    std::mt19937 random(1);
    const auto name = [&] {
        std::string made = pieces[random() % 3];
        for (auto count = random() % 4; count > 0; --count) made += pieces[random() % 9];
        return made;
    };
    std::size_t full = 0, plain = 0;
    for (int round = 0; round < 10; ++round) {
        const TempDir dir;
        for (int i = 0; i < 40 + round * 20; ++i) dir.write(name(), "");
        for (int i = 0; i < 40; ++i) {
            const std::string video = name() + ".mkv";
            const auto found = tool::searchSubtitles(dir / video);
            const auto expected = searchByTheLibrary(dir / "", video);
            EXPECT_TRUE(std::ranges::equal(found.files, expected.files)) << video;
            EXPECT_EQ(found.plainSrt, expected.plainSrt) << video;
            full += found.full;
            plain += found.plainSrt.has_value();
        }
    }
    EXPECT_GT(full, 50U);
    EXPECT_GT(plain, 50U);
}

TEST(SubtitleFiles, AreReadAgainWhereSomethingChangedOrFailed)
{
    const TempDir dir;
    dir.write("a/film.srt", "");
    dir.write("b/other.srt", "");
    const auto count = [&](const char *video) {
        return tool::searchSubtitles(dir / video).files.size();
    };
    EXPECT_EQ(count("a/film.mkv"), 1U);
    EXPECT_EQ(count("b/film.mkv"), 0U);
    std::filesystem::last_write_time(dir / "b", {}); // the clock may be too coarse
    dir.write("b/film.vtt", "");
    readdirFault() = {.failing = 3, .error = EIO};
    const auto failed = tool::searchSubtitles(dir / "b/film.mkv");
    readdirFault() = {};
    EXPECT_EQ(failed.errorCode, "unreadable");
    EXPECT_EQ(failed.error, "its folder can't be read: Input/output error");
    EXPECT_EQ(failed.files.size(), 0U);
    EXPECT_EQ(count("b/film.mkv"), 1U);
    EXPECT_EQ(count("a/film.mkv"), 1U);
}

} // namespace
} // namespace vornak::test

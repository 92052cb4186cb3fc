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

using Names = std::vector<std::string>;

/// "name, kind, language" of each, sorted, and the plain one.
Names found(const tool::SubtitleSearch &search)
{
    Names all;
    for (const auto &file : search.files)
        all.push_back(file.name + ", " + std::string(file.kind) + ", " + file.language);
    all.push_back("plain: " + search.plainSrt.value_or("none"));
    return all;
}

Names foundByTheLibrary(const std::string &folder, const std::string &video)
{
    const Capture trace(STDOUT_FILENO);
    std::vector<VIDEO_SUBTITLE_ST> list(VORNAK_SUBTITLE_LIST_SIZE);
    EXPECT_EQ(findVideoSubtitlesByFullPath((folder + video).c_str(), list.data(), 0), 0);
    Names all;
    for (auto one = list.begin(); one->type != VORNAK_SUBTITLE_END; ++one)
        all.push_back(one->fileName + std::string(one->type == 0 ? ", srt, " : ", vtt, ") +
                      (std::string_view(one->lang) == "unkown" ? "" : one->lang));
    std::ranges::sort(all);
    char plain[VORNAK_SUBTITLE_PATH_SIZE];
    const bool isThere = findVideoSubtitle(folder.c_str(), video.c_str(), plain) == 0;
    all.push_back(isThere ? "plain: " + std::string(plain + folder.size()) : "plain: none");
    return all;
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
            const auto search = tool::searchSubtitles(dir / video);
            EXPECT_EQ(found(search), foundByTheLibrary(dir / "", video)) << video;
            full += search.full;
            plain += search.plainSrt.has_value();
        }
    }
    EXPECT_GT(full, 50U);
    EXPECT_GT(plain, 50U);
}

TEST(SubtitleFiles, AreReadAgainWhereSomethingChanged)
{
    const TempDir dir;
    dir.write("a/film.srt", "");
    dir.write("b/other.srt", "");
    const auto count = [&](const char *video) {
        return tool::searchSubtitles(dir / video).files.size();
    };
    EXPECT_EQ(count("a/film.mkv"), 1U);
    EXPECT_EQ(count("b/film.mkv"), 0U);
    EXPECT_EQ(count("a/film.mkv"), 1U);
    std::filesystem::last_write_time(dir / "b", {}); // the clock may be too coarse
    dir.write("b/film.vtt", "");
    EXPECT_EQ(count("b/film.mkv"), 1U);
}

TEST(SubtitleFiles, AreUnknownWhereTheFolderCannotBeRead)
{
    const TempDir dir;
    const std::string video = dir.write("film.mkv", "");
    dir.write("film.srt", "");
    const struct {
        std::string video;
        int failingCall;
        std::string code, error;
    } cases[] = {
        {dir / "none/film.mkv", 0, "unreadable",
         "its folder can't be read: No such file or directory"},
        {video, 3, "unreadable", "its folder can't be read: Input/output error"},
        {video, 0, "", ""}, // the next time it can
        {std::string(1023, '/') + "/film.mkv", 0, "path-too-long",
         "its folder's path is longer than 1023 characters"},
    };
    for (const auto &c : cases) {
        readdirFault() = {.failing = c.failingCall, .error = EIO};
        const auto search = tool::searchSubtitles(c.video);
        readdirFault() = {};
        EXPECT_EQ(search.errorCode, c.code);
        EXPECT_EQ(search.error, c.error);
        EXPECT_EQ(search.files.size(), c.code.empty());
    }
}

} // namespace
} // namespace vornak::test

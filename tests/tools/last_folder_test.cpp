#include "tools/files/last_folder.h"

#include "tests/support/temp_dir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace vornak::test {
namespace {

TEST(LastFolder, KnowsTheBeginningsOfItsSubtitles)
{
    const TempDir dir;
    for (const char *name : {"film.en.srt", "other.VTT", "x.srt.old", "odd.srtx", "film 2.mkv"})
        dir.write(name, "");
    tool::LastFolder last;
    const struct {
        const char *stem;
        bool mayHold;
    } cases[] = {{"film", true},   {"fil", true},      {"Film", false}, {"film 2", false},
                 {"other", true},  {"other.", true},   {"x", false},    {"odd", true},
                 {"film.e", true}, {"film.f", false},  {"", true},      {"z", false},
                 {"a", false},     {"film.en.s", true}};
    for (const auto &c : cases) EXPECT_EQ(last.mayHold(dir / "", c.stem), c.mayHold) << c.stem;
}

TEST(LastFolder, ReadsAnotherOrAChangedFolder)
{
    const TempDir dir;
    dir.write("a/film.srt", "");
    dir.write("b/other.srt", "");
    tool::LastFolder last;
    EXPECT_TRUE(last.mayHold(dir / "a/", "film"));
    EXPECT_FALSE(last.mayHold(dir / "b/", "film"));
    EXPECT_TRUE(last.mayHold(dir / "a/", "film"));
    EXPECT_TRUE(last.mayHold(dir / "missing/", "film")); // the library says what is wrong
    EXPECT_FALSE(last.mayHold(dir / "b/", "film"));
    std::filesystem::last_write_time(dir / "b", {}); // the clock may be too coarse
    dir.write("b/film.vtt", "");
    EXPECT_TRUE(last.mayHold(dir / "b/", "film"));
}

} // namespace
} // namespace vornak::test

#include "include/vornak.h"
#include "tests/support/leak_check.h"
#include "tests/support/temp_dir.h"

#include <array>

namespace vornak::test {
namespace {

class FindVideoSubtitle : public LeakCheck {};

using Path = std::array<char, VORNAK_SUBTITLE_PATH_SIZE>;

TEST_F(FindVideoSubtitle, takesThePlainSrtFileAlone)
{
    const struct {
        const char *video, *file;
        bool found;
    } cases[] = {
        {"Movie.mkv", "Movie.srt", true},
        {"Movie.mkv", "Movie.SrT", true},
        {"Movie.mkv", "movie.srt", false},
        {"Movie.mkv", "Movie.en.srt", false},
        {"Movie.mkv", "Movie.srtx", false},
        {"Movie.mkv", "Movie.sr", false},
        {"Movie.mkv", "Movie.vtt", false},
        {"Movie.mkv", "Movie", false},
        {"a.b.mkv", "a.b.srt", true},
        {"a.b.mkv", "a.srt", false},
        {"clip", "clip.srt", true},
        {".mkv", ".srt", true},
        {"", ".srt", true},
    };
    for (const auto &c : cases) {
        const TempDir temp;
        temp.write(c.file, "");
        Path path;
        path.fill('#');
        EXPECT_EQ(findVideoSubtitle((temp / "").c_str(), c.video, path.data()), c.found ? 0 : 1)
            << c.video << " with " << c.file;
        const std::string expected = temp / c.file;
        if (c.found)
            EXPECT_STREQ(path.data(), expected.c_str());
        else
            EXPECT_EQ(path[0], '#') << c.video << " with " << c.file;
    }
}

TEST_F(FindVideoSubtitle, fillsItsBufferToTheLastByteAtMost)
{
    // The longest folder that can be opened, by way of "./" repeated, and the longest name.
    const TempDir temp;
    const std::string name = std::string(251, 'n') + ".srt";
    temp.write(name, "");
    std::string folder = temp / "";
    while (folder.size() + 2 < 4096) folder += "./";
    folder.insert(0, 4095 - folder.size(), '/');
    Path path;
    ASSERT_EQ(
        findVideoSubtitle(folder.c_str(), (name.substr(0, 251) + ".mkv").c_str(), path.data()), 0);
    EXPECT_EQ(path.data(), folder + name);
}

TEST_F(FindVideoSubtitle, refusesWhatIsNoFolder)
{
    const TempDir temp;
    const std::string folder = temp / "", missing = temp / "missing/",
                      file = temp.write("M.srt", "");
    char path[VORNAK_SUBTITLE_PATH_SIZE] = "as it was";
    EXPECT_EQ(findVideoSubtitle(nullptr, "M.mkv", path), 1);
    EXPECT_EQ(findVideoSubtitle(folder.c_str(), nullptr, path), 1);
    EXPECT_EQ(findVideoSubtitle(folder.c_str(), "M.mkv", nullptr), 1);
    EXPECT_EQ(findVideoSubtitle(missing.c_str(), "M.mkv", path), 1);
    EXPECT_EQ(findVideoSubtitle(file.c_str(), "M.mkv", path), 1);
    EXPECT_EQ(findVideoSubtitle("", "M.mkv", path), 1);
    EXPECT_STREQ(path, "as it was");
}

} // namespace
} // namespace vornak::test

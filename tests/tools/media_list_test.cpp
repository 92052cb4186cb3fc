#include "tests/support/temp_dir.h"
#include "tools/files/media_list.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>

namespace vornak::test {
namespace {

using tool::MediaItem;
using tool::MediaList;

/// What the list gives, with the directory's own path cut off: "path" or "path: error".
std::vector<std::string> listed(MediaList &list, const TempDir &dir)
{
    std::vector<std::string> all;
    while (const std::optional<MediaItem> item = list.next()) {
        std::string text = item->path;
        if (text.starts_with(dir.path().string())) text.erase(0, dir.path().string().size() + 1);
        all.push_back(item->error.empty() ? text : text + ": " + item->error);
    }
    return all;
}

TEST(MediaList, WalksFoldersInByteOrderOfThePaths)
{
    const TempDir dir;
    for (const char *name : {"f/a/x.mkv", "f/a-b.mp4", "f/a.mp4", "f/a/B.TS", "f/ab/z.avi",
                             "f/notes.txt", "f/a/cover.jpg", "f/none", "f/.mp4"})
        dir.write(name, "");
    std::filesystem::create_directory_symlink(dir / "f/a", dir / "f/linked");
    std::filesystem::create_symlink(dir / "f/a.mp4", dir / "f/link.mp4");
    std::filesystem::create_symlink(dir / "gone", dir / "f/dangling.mp4");
    mkfifo((dir / "f/pipe.mp4").c_str(), 0600);

    std::istringstream none;
    MediaList list({dir / "f"}, none);
    EXPECT_EQ(listed(list, dir),
              (std::vector<std::string>{"f/a-b.mp4", "f/a.mp4", "f/a/B.TS", "f/a/x.mkv",
                                        "f/ab/z.avi", "f/dangling.mp4", "f/link.mp4"}));
    EXPECT_EQ(list.skipped(), 5U); // notes, cover, none, .mp4, pipe
}

TEST(MediaList, TakesWhatIsNamedWhateverItIsCalled)
{
    const TempDir dir;
    dir.write("readme", "");
    dir.write("d/one.mp4", "");
    std::filesystem::create_directory_symlink(dir / "d", dir / "link");
    mkfifo((dir / "pipe").c_str(), 0600);
    std::istringstream none;
    MediaList list({dir / "readme", dir / "gone", dir / "link", dir / "pipe", ""}, none);
    EXPECT_EQ(listed(list, dir),
              (std::vector<std::string>{"readme", "gone: No such file or directory", "link/one.mp4",
                                        "pipe: neither a file nor a folder",
                                        ": No such file or directory"}));
    EXPECT_EQ(list.skipped(), 0U);
}

TEST(MediaList, ReadsNamesALineInTheirPlace)
{
    const TempDir dir;
    for (const char *name : {"1.mp4", "2 b.mp4", "d/3.mp4", "4.mp4"}) dir.write(name, "");
    std::istringstream names((dir / "2 b.mp4") + "\n\n" + (dir / "d") + "\n" + (dir / "-"));
    MediaList list({dir / "1.mp4", "-", dir / "4.mp4", "-"}, names);
    EXPECT_EQ(listed(list, dir),
              (std::vector<std::string>{"1.mp4", "2 b.mp4", "d/3.mp4",
                                        "-: No such file or directory", "4.mp4"}));
}

TEST(MediaList, KnowsMediaByTheEndingInAnyCase)
{
    for (const char *name :
         {"a.mp4", "a.M4P", "a.f4a", "a.f4b", "a.m4r", "a.adts", "a.latm", "a.3gpp", "a.b.dvr-ms",
          "a.3gp2", "a.mp2v", "a.264", "a.y4m", ".a.mkv"})
        EXPECT_TRUE(tool::hasMediaName(name)) << name;
    for (const char *name : {"mp4", ".mp4", "a.mp4.", "a.mp", "a.mp4a", "a.txt", "a.jpg", "a.m3u",
                             "a.srt", "a.dvr", ""})
        EXPECT_FALSE(tool::hasMediaName(name)) << name;
}

} // namespace
} // namespace vornak::test

#include "tests/support/deep_folder.h"
#include "tests/support/readdir_fault.h"
#include "tests/support/temp_dir.h"
#include "tools/files/media_list.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
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
                             "f/notes.txt", "f/a/cover.jpg", "f/none", "f/.mp4",
                             // what file systems and other programs put there
                             "f/._a.mp4", "f/.hidden.mp4", "f/@eaDir/a.mp4/SYNO.mp4",
                             "f/.Trash/b.mp4", "f/a/._b/c.mp4", "f/@eaDirs/d.mp4"})
        dir.write(name, "");
    std::filesystem::create_directory_symlink(dir / "f/a", dir / "f/linked");
    std::filesystem::create_symlink(dir / "f/a.mp4", dir / "f/link.mp4");
    std::filesystem::create_symlink(dir / "gone", dir / "f/dangling.mp4");
    mkfifo((dir / "f/pipe.mp4").c_str(), 0600);

    std::istringstream none;
    MediaList list({{dir / "f"}}, none);
    EXPECT_EQ(listed(list, dir),
              (std::vector<std::string>{"f/.hidden.mp4", "f/@eaDirs/d.mp4", "f/a-b.mp4", "f/a.mp4",
                                        "f/a/B.TS", "f/a/x.mkv", "f/ab/z.avi", "f/dangling.mp4",
                                        "f/link.mp4"}));
    EXPECT_EQ(list.skipped(), 6U); // notes, cover, none, .mp4, pipe, ._a
}

TEST(MediaList, TakesWhatIsNamedWhateverItIsCalled)
{
    const TempDir dir;
    dir.write("readme", "");
    dir.write("d/one.mp4", "");
    dir.write(".d/two.mp4", "");
    dir.write("@eaDir/._three.mp4", "");
    std::filesystem::create_directory_symlink(dir / "d", dir / "link");
    mkfifo((dir / "pipe").c_str(), 0600);
    std::istringstream none;
    MediaList list({{dir / "readme", dir / "gone", dir / "link", dir / "pipe", "", dir / ".d",
                     dir / "@eaDir/._three.mp4", dir / "@eaDir"}},
                   none);
    EXPECT_EQ(listed(list, dir),
              (std::vector<std::string>{"readme", "gone: No such file or directory", "link/one.mp4",
                                        "pipe: neither a file nor a folder",
                                        ": No such file or directory", ".d/two.mp4",
                                        "@eaDir/._three.mp4"}));
    EXPECT_EQ(list.skipped(), 1U);
}

TEST(MediaList, ReadsNamesInTheirPlace)
{
    const TempDir dir;
    for (const char *name : {"1.mp4", "2 b.mp4", "d/3.mp4", "4.mp4", "5\r", "6\n"})
        dir.write(name, "");
    const std::string two = dir / "2 b.mp4", d = dir / "d";
    const auto null = [](std::string text) {
        std::ranges::replace(text, '|', '\0');
        return text;
    };
    const std::string noNull =
        "the name holds a NUL byte; --null reads names that end in one, else "
        "give one a line";
    const struct {
        std::string list;
        bool endInNull;
        std::vector<std::string> named;
    } cases[] = {
        {two + "\n\n" + d + "\n" + (dir / "-"),
         false,
         {"2 b.mp4", "d/3.mp4", "-: No such file or directory"}},
        {two + "\r\n\r\n" + d + "\r\n", false, {"2 b.mp4", "d/3.mp4"}},
        {null(two + "||" + d + "|" + (dir / "5\r|") + (dir / "6\n")),
         true,
         {"2 b.mp4", "d/3.mp4", "5\r", "6\n"}},
        {null(two + "|" + d + "|\n"), false, {null("2 b.mp4|" + d + "|: ") + noNull}},
    };
    for (const auto &c : cases) {
        std::istringstream names(c.list);
        MediaList list({{dir / "1.mp4", "-", dir / "4.mp4", "-"}, c.endInNull}, names);
        std::vector<std::string> expected = c.named;
        expected.insert(expected.begin(), "1.mp4");
        expected.emplace_back("4.mp4");
        EXPECT_EQ(listed(list, dir), expected);
    }
}

TEST(MediaList, NamesAFolderThatCannotBeReadToItsEnd)
{
    const TempDir dir;
    for (const char *name : {"f/a.mp4", "f/b.mp4"}) dir.write(name, "");
    std::istringstream none;
    for (const auto &[failing, files] : {std::pair{1, 0U}, {5, 2U}}) {
        readdirFault() = {.failing = failing, .error = EIO};
        MediaList list({{dir / "f"}}, none);
        const std::vector<std::string> all = listed(list, dir);
        readdirFault() = {};
        ASSERT_EQ(all.size(), files + 1);
        EXPECT_EQ(all[0], "f/: not all of it can be read: Input/output error");
    }
}

TEST(MediaList, WalksBelowWhatThePathsOfTheSystemReach)
{
    const TempDir dir;
    for (const char *name : {"deep.mp4", "lower/deeper.mp4"}) writeDeep(dir.path(), name, "found");
    std::istringstream none;
    MediaList list({{dir / ""}}, none);
    for (const char *name : {"/deep.mp4", "/lower/deeper.mp4"}) {
        const std::optional<MediaItem> item = list.next();
        ASSERT_TRUE(item);
        EXPECT_EQ(item->error, "");
        EXPECT_GT(item->path.size(), 4095U);
        EXPECT_TRUE(item->path.ends_with(name));
        std::string content;
        std::ifstream(item->openablePath()) >> content;
        EXPECT_EQ(content, "found");
    }
    EXPECT_FALSE(list.next());
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

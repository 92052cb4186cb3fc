#include "tests/disc/disc_folder.h"

#include <array>

namespace vornak::test {
namespace {

class IndexFile : public LeakCheck {};

/// A caller's buffer that is larger than the size given for it.
struct Out {
    std::array<char, 4096> bytes;

    Out() { bytes.fill('#'); }

    /// Whether the first `size` bytes hold `text`, cut to fit and followed by NULs, and no other
    /// byte was written.
    bool holds(const std::string &text, std::size_t size) const
    {
        std::array<char, 4096> expected;
        expected.fill('#');
        std::fill_n(expected.begin(), size, '\0');
        if (size > 0) text.copy(expected.data(), size - 1);
        return bytes == expected;
    }
    bool untouched() const { return holds("", 0); }
};

TEST_F(IndexFile, isFoundInTheFoldersOfDiscs)
{
    const int dvd = VORNAK_DISC_DVD, bd = VORNAK_DISC_BD;
    const struct {
        int disc;
        const char *folder, *name;
        std::vector<const char *> files;
    } cases[] = {
        {dvd, "VIDEO_TS/", "VIDEO_TS.IFO", {"VIDEO_TS/VIDEO_TS.IFO"}},
        {dvd, "video_ts/", "video_ts.ifo", {"video_ts/video_ts.ifo"}},
        {bd, "BDMV/", "index.bdmv", {"BDMV/index.bdmv"}},
        {bd, "bdmv/", "index.bdmv", {"bdmv/index.bdmv"}},
        {dvd, "video_ts/", "video_ts.ifo", {"BDMV/index.bdmv", "video_ts/video_ts.ifo"}},
        {dvd, "VIDEO_TS/", "VIDEO_TS.IFO", {"video_ts/video_ts.ifo", "VIDEO_TS/VIDEO_TS.IFO"}},
        {bd, "BDMV/", "index.bdmv", {"bdmv/index.bdmv", "BDMV/index.bdmv"}},
        {dvd, "VIDEO_TS/", "VIDEO_TS.IFO", {"VIDEO_TS/VIDEO_TS.IFO/x"}}, // a directory
        {0, "", "", {"Video_TS/Video_TS.ifo"}},
        {0, "", "", {"VIDEO_TS/video_ts.ifo"}},
        {0, "", "", {"BDMV/INDEX.BDMV"}},
        {0, "", "", {"VIDEO_TS.IFO", "index.bdmv"}},
    };
    for (const auto &c : cases) {
        const TempDir temp;
        for (const char *file : c.files) temp.write(file, "");
        const std::string root = temp / "";
        Out path, folder, name;
        EXPECT_EQ(parseMountedFolder(root.c_str(), path.bytes.data(), 1024), c.disc);
        EXPECT_EQ(
            parseMountedFolder_v2(root.c_str(), folder.bytes.data(), 1000, name.bytes.data(), 100),
            c.disc);
        SCOPED_TRACE(c.files[0]);
        EXPECT_TRUE(c.disc ? path.holds(root + c.folder + c.name, 1024) : path.untouched());
        EXPECT_TRUE(c.disc ? folder.holds(root + c.folder, 1000) : folder.untouched());
        EXPECT_TRUE(c.disc ? name.holds(c.name, 100) : name.untouched());
    }
}

TEST_F(IndexFile, isCutToTheCallersSizes)
{
    const TempDir temp;
    temp.write("BDMV/index.bdmv", "");
    const std::string root = temp / "", folder = root + "BDMV/", path = folder + "index.bdmv";
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, folder.size(), folder.size() + 1,
          path.size(), path.size() + 1, std::size_t{4096}}) {
        Out whole, dir, name;
        const auto given = static_cast<unsigned>(size);
        EXPECT_EQ(parseMountedFolder(root.c_str(), whole.bytes.data(), given), VORNAK_DISC_BD);
        EXPECT_TRUE(whole.holds(path, size)) << size;
        EXPECT_EQ(
            parseMountedFolder_v2(root.c_str(), dir.bytes.data(), given, name.bytes.data(), 7),
            VORNAK_DISC_BD);
        EXPECT_TRUE(dir.holds(folder, size)) << size;
        EXPECT_TRUE(name.holds("index.bdmv", 7));
        EXPECT_EQ(
            parseMountedFolder_v2(root.c_str(), dir.bytes.data(), given, name.bytes.data(), 0),
            VORNAK_DISC_BD);
        EXPECT_TRUE(name.holds("index.bdmv", 7)); // as it was
    }
}

TEST_F(IndexFile, isJoinedToTheFolderWithNothingBetween)
{
    const TempDir temp;
    temp.write("discBDMV/index.bdmv", "");
    std::filesystem::create_directory(temp / "disc");
    Out out;
    EXPECT_EQ(parseMountedFolder((temp / "disc").c_str(), out.bytes.data(), 4096), VORNAK_DISC_BD);
    EXPECT_TRUE(out.holds(temp / "discBDMV/index.bdmv", 4096));
}

TEST_F(IndexFile, countsAsAbsentWhereItsPathDoesNotFit)
{
    const TempDir temp;
    temp.write("VIDEO_TS/VIDEO_TS.IFO", "");
    temp.write("VIDEO_TS/VIDEO_TS.IF", ""); // what is left of the path when it is cut
    constexpr std::size_t kLongest = 1023 - std::char_traits<char>::length("VIDEO_TS/VIDEO_TS.IFO");
    Out path, dir, name;
    const std::string fits = longFolder(temp, kLongest), tooLong = longFolder(temp, kLongest + 1);
    EXPECT_EQ(parseMountedFolder(tooLong.c_str(), path.bytes.data(), 4096), 0);
    EXPECT_EQ(
        parseMountedFolder_v2(tooLong.c_str(), dir.bytes.data(), 4096, name.bytes.data(), 4096), 0);
    EXPECT_TRUE(path.untouched() && dir.untouched() && name.untouched());
    EXPECT_EQ(parseMountedFolder(fits.c_str(), path.bytes.data(), 4096), VORNAK_DISC_DVD);
    EXPECT_TRUE(path.holds(fits + "VIDEO_TS/VIDEO_TS.IFO", 4096));

    temp.write("BDMV/index.bdmv", "");
    EXPECT_EQ(parseMountedFolder(tooLong.c_str(), path.bytes.data(), 4096), VORNAK_DISC_BD);
}

TEST_F(IndexFile, needsAFolderAndSomewhereToWrite)
{
    const TempDir temp;
    temp.write("VIDEO_TS/VIDEO_TS.IFO", "");
    temp.write("fileVIDEO_TS/VIDEO_TS.IFO", "");
    const std::string root = temp / "", file = temp.write("file", ""), missing = temp / "missing/";
    char a[64] = "a", b[64] = "b";
    EXPECT_EQ(parseMountedFolder(nullptr, a, 64), 0);
    EXPECT_EQ(parseMountedFolder(root.c_str(), nullptr, 64), 0);
    EXPECT_EQ(parseMountedFolder(file.c_str(), a, 64), 0);
    EXPECT_EQ(parseMountedFolder(missing.c_str(), a, 64), 0);
    EXPECT_EQ(parseMountedFolder("", a, 64), 0);
    EXPECT_EQ(parseMountedFolder_v2(nullptr, a, 64, b, 64), 0);
    EXPECT_EQ(parseMountedFolder_v2(root.c_str(), nullptr, 64, b, 64), 0);
    EXPECT_EQ(parseMountedFolder_v2(root.c_str(), a, 64, nullptr, 64), 0);
    EXPECT_STREQ(a, "a");
    EXPECT_STREQ(b, "b");
}

} // namespace
} // namespace vornak::test

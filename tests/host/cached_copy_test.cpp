#include "include/vornak.h"

#include "tests/support/leased_file.h"
#include "tests/support/leftovers.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace vornak::test {
namespace {

using Found = std::optional<std::string>;

Found taken(char *path)
{
    Found text;
    if (path) text = path;
    std::free(path);
    return text;
}

/// Both functions' answer, which must be the same.
Found findCopy(const char *tag1, const char *tag2, const char *source)
{
    Found music = taken(IsMusicTranscodeFileReady(1, 2, 3, 4, tag1, tag2, source));
    const Found video = taken(IsVideoTranscodeFileReady(1, 2, 3, 4, 5, tag1, tag2, source));
    EXPECT_EQ(music, video);
    return music;
}

Found findCopy(const std::string &source, const char *tag1 = "A", const char *tag2 = "B")
{
    return findCopy(tag1, tag2, source.c_str());
}

/// findCopy() with the rights of somebody else than root, who may open everything.
Found findCopyAsAUser(const std::string &source)
{
    const uid_t self = geteuid();
    if (self != 0) return findCopy(source);
    EXPECT_EQ(seteuid(65534), 0);
    Found copy = findCopy(source);
    EXPECT_EQ(seteuid(self), 0);
    return copy;
}

class CachedCopyTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(countLeftovers(), before_); }

    TempDir dir_;
    Leftovers before_ = countLeftovers();
};

TEST_F(CachedCopyTest, StandsBesideTheSource)
{
    const std::string copy = dir_.write("al bum/.@__thumb/transcode/track01.flac.B_A", "");
    EXPECT_EQ(findCopy(dir_ / "al bum/track01.flac"), copy); // the source itself is not asked for
    EXPECT_EQ(findCopy(dir_ / "al bum/track01.flac", "B", "A"), std::nullopt);
    EXPECT_EQ(findCopy(dir_ / "al bum/track01"), std::nullopt);
    EXPECT_EQ(findCopy(dir_ / "track01.flac"), std::nullopt);

    const std::string noName = dir_.write("al bum/.@__thumb/transcode/.B_A", "");
    EXPECT_EQ(findCopy(dir_ / "al bum/"), noName);
    const std::string noTags = dir_.write("al bum/.@__thumb/transcode/%s%n._", "");
    EXPECT_EQ(findCopy(dir_ / "al bum/%s%n", "", ""), noTags);

    EXPECT_EQ(findCopy(nullptr, "B", copy.c_str()), std::nullopt);
    EXPECT_EQ(findCopy("A", nullptr, copy.c_str()), std::nullopt);
    EXPECT_EQ(findCopy("A", "B", nullptr), std::nullopt);
}

TEST_F(CachedCopyTest, SourceNeedsADirectory)
{
    dir_.write(".@__thumb/transcode/song.B_A", "");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir_.path());
    EXPECT_EQ(findCopy("song"), std::nullopt);
    EXPECT_EQ(findCopy("./song"), "./.@__thumb/transcode/song.B_A");
    std::filesystem::current_path(before);
}

TEST_F(CachedCopyTest, CountsWhenItCanBeOpened)
{
    const std::string copy = dir_.write(".@__thumb/transcode/song.B_A", "");
    std::filesystem::create_directory(dir_ / ".@__thumb/transcode/folder.B_A");
    EXPECT_EQ(findCopy(dir_ / "folder"), dir_ / ".@__thumb/transcode/folder.B_A");

    std::filesystem::permissions(dir_.path(), std::filesystem::perms(0755));
    EXPECT_EQ(findCopyAsAUser(dir_ / "song"), copy);
    std::filesystem::permissions(copy, std::filesystem::perms::none);
    EXPECT_EQ(findCopyAsAUser(dir_ / "song"), std::nullopt);
}

TEST_F(CachedCopyTest, WaitsForALeaseButNotForAFifo)
{
    const std::string copy = dir_.write(".@__thumb/transcode/song.B_A", "");
    {
        const LeasedFile lease(copy);
        if (!lease) GTEST_SKIP() << "the file system of " << copy << " has no leases";
        EXPECT_EQ(findCopy(dir_ / "song"), copy);
    }

    const std::string fifo = dir_ / ".@__thumb/transcode/fifo.B_A";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(findCopy(dir_ / "fifo"), fifo);
}

TEST_F(CachedCopyTest, PathTooLongIsNotCut)
{
    dir_.write(".@__thumb/transcode/song.B_AA", "");
    dir_.write(".@__thumb/transcode/song.B_A", ""); // what a path cut by one would name
    const std::string rest = ".@__thumb/transcode/song.B_AA";
    for (const std::size_t length : {1022U, 1023U, 1024U, 3000U}) {
        std::string folder = dir_ / "";
        folder.append(length - folder.size() - rest.size(), '/');
        const Found expected = length < 1024 ? Found(folder + rest) : std::nullopt;
        EXPECT_EQ(findCopy(folder + "song", "AA"), expected) << length;
    }
}

} // namespace
} // namespace vornak::test

// The volume root inside root directories of the test's own.
#include "include/vornak.h"

#include "tests/support/leftovers.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace vornak::test {
namespace {

struct Entry {
    std::string path;       // in the root directory
    std::string linkTarget; // empty: a directory
};

void makeEntry(const TempDir &root, const Entry &entry)
{
    const std::filesystem::path path = root.path() / entry.path;
    std::filesystem::create_directories(path.parent_path());
    if (entry.linkTarget.empty())
        std::filesystem::create_directory(path);
    else
        std::filesystem::create_symlink(entry.linkTarget, path);
}

constexpr int kNoChroot = 77;

/// "0" or "1" and the buffer that a process confined to `root` gets, whose text was "untouched".
std::string askInside(const TempDir &root)
{
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        if (chroot(root.path().c_str()) != 0) _exit(kNoChroot);
        char buffer[VORNAK_VOLUME_ROOT_SIZE] = "untouched";
        std::string answer = getMainMountPath(buffer) == 0 ? "0 " : "1 ";
        answer += buffer;
        _exit(write(ends[1], answer.data(), answer.size()) < 0 ? 1 : 0);
    }
    close(ends[1]);
    char answer[VORNAK_VOLUME_ROOT_SIZE] = "";
    const ssize_t got = read(ends[0], answer, sizeof answer);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == kNoChroot) return "no chroot";
    return status == 0 && got > 0 ? std::string(answer, static_cast<std::size_t>(got)) : "died";
}

TEST(VolumeRootTest, FirstShareThatResolvesDecides)
{
    const struct {
        const char *what;
        std::vector<Entry> entries;
        const char *expected;
    } cases[] = {
        {"no share", {{"share", ""}}, "1 untouched"},
        {"plain", {{"share/Public", ""}}, "0 /share/"},
        {"linked", {{"share/vol1/Public", ""}, {"share/Public", "vol1/Public"}}, "0 /share/vol1/"},
        {"dots", {{"mnt/Public", ""}, {"share/Public", "../share/./../mnt/Public/."}}, "0 /mnt/"},
        {"second without its marker", {{"share/Multimedia", "/pool"}, {"pool", ""}}, "1 untouched"},
        {"second, dangling first",
         {{"share/Public", "gone"},
          {"pool/Multimedia", ""},
          {"share/Multimedia", "/pool/Multimedia"}},
         "0 /pool/"},
        {"third", {{"pool/Ombrel", ""}, {"share/Ombrel", "/pool/Ombrel"}}, "0 /pool/"},
        {"all",
         {{"share/Multimedia", "/a"}, {"b/Public", ""}, {"share/Public", "/b/Public"}},
         "0 /b/"},
        {"first without its marker",
         {{"pool/x", ""}, {"share/Public", "/pool/x"}, {"share/Multimedia", ""}},
         "1 untouched"},
        {"marker of another share",
         {{"pool/Multimedia", ""}, {"share/Public", "/pool/Multimedia"}},
         "1 untouched"},
        {"other letter case",
         {{"pool/public", ""}, {"share/Public", "/pool/public"}},
         "1 untouched"},
        {"marker twice",
         {{"PublicPool/Public", ""}, {"share/Public", "/PublicPool/Public"}},
         "0 /"},
        {"marker inside a name",
         {{"a/myPublic2", ""}, {"share/Public", "/a/myPublic2"}},
         "0 /a/my"},
    };
    const Leftovers before = countLeftovers();
    for (const auto &c : cases) {
        const TempDir root;
        for (const Entry &entry : c.entries) makeEntry(root, entry);
        const std::string answer = askInside(root);
        if (answer == "no chroot") GTEST_SKIP() << "changing the root directory needs root";
        EXPECT_EQ(answer, c.expected) << c.what;
    }
    EXPECT_EQ(countLeftovers(), before);
    EXPECT_EQ(getMainMountPath(nullptr), 1);
}

TEST(VolumeRootTest, LeavesNothingOpen)
{
    const Leftovers before = countLeftovers();
    char root[VORNAK_VOLUME_ROOT_SIZE];
    for (int i = 0; i < 10; ++i) getMainMountPath(root);
    EXPECT_EQ(countLeftovers(), before);
}

} // namespace
} // namespace vornak::test

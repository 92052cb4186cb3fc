// The volume root inside root directories of the test's own.
#include "include/vornak.h"

#include "tests/support/leftovers.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace vornak::test {
namespace {

/// Makes directories, and links where a target follows: "share/Public=/pool pool".
void makeEntries(const TempDir &root, const char *entries)
{
    std::istringstream words(entries);
    for (std::string word; words >> word;) {
        const std::size_t mark = word.find('=');
        const std::filesystem::path path = root.path() / word.substr(0, mark);
        std::filesystem::create_directories(path.parent_path());
        if (mark == std::string::npos)
            std::filesystem::create_directory(path);
        else
            std::filesystem::create_symlink(word.substr(mark + 1), path);
    }
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
        const char *entries, *expected;
    } cases[] = {
        {"share", "1 untouched"},
        {"share/Public", "0 /share/"},
        {"share/vol1/Public share/Public=vol1/Public", "0 /share/vol1/"},
        {"mnt/Public share/Public=../share/./../mnt/Public/.", "0 /mnt/"},
        {"share/Multimedia=/pool pool", "1 untouched"}, // its marker is missing
        {"share/Public=gone pool/Multimedia share/Multimedia=/pool/Multimedia", "0 /pool/"},
        {"pool/Ombrel share/Ombrel=/pool/Ombrel", "0 /pool/"},
        {"share/Multimedia=/a b/Public share/Public=/b/Public", "0 /b/"},
        {"pool/x share/Public=/pool/x share/Multimedia", "1 untouched"},
        {"pool/Multimedia share/Public=/pool/Multimedia", "1 untouched"},
        {"pool/public share/Public=/pool/public", "1 untouched"},
        {"PublicPool/Public share/Public=/PublicPool/Public", "0 /"},
        {"a/myPublic2 share/Public=/a/myPublic2", "0 /a/my"},
    };
    const Leftovers before = countLeftovers();
    for (const auto &c : cases) {
        const TempDir root;
        makeEntries(root, c.entries);
        const std::string answer = askInside(root);
        if (answer == "no chroot") GTEST_SKIP() << "changing the root directory needs root";
        EXPECT_EQ(answer, c.expected) << c.entries;
    }
    EXPECT_EQ(countLeftovers(), before);
    EXPECT_EQ(getMainMountPath(nullptr), 1);
}

} // namespace
} // namespace vornak::test

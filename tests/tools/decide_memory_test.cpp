// That the tool's memory does not depend on the number of files.
#include "tests/support/small_wav.h"
#include "tests/support/temp_dir.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vornak::test {
namespace {

/// Peak memory in KB of a run over a folder, with the document as long as it gets.
long peakMemory(const std::string &profile, const std::string &folder)
{
    const pid_t child = fork();
    if (child == 0) {
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        execl(VORNAK_CLI, VORNAK_CLI, "decide", "-p", profile.c_str(), "--json", "--explain",
              folder.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_EQ(status, 0);
    return usage.ru_maxrss;
}

TEST(DecideMemory, DoesNotGrowWithTheFiles)
{
    const TempDir dir;
    std::string profile = "<DEVICE NAME='many rules'><MUSIC>";
    for (int i = 0; i < 50; ++i)
        profile += "<ACODEC NAME='mp3'><FORMAT NAME='mp3'/></ACODEC>"; // 5 KB in each entry
    const std::string path = dir.write("p.xml", profile + "</MUSIC></DEVICE>");
    const std::string first = dir.write("few/0.wav", smallWav());
    for (int i = 1; i < 100; ++i)
        std::filesystem::create_hard_link(first, dir / ("few/" + std::to_string(i) + ".wav"));
    std::filesystem::create_directory(dir / "many");
    for (int i = 0; i < 4000; ++i)
        std::filesystem::create_hard_link(first, dir / ("many/" + std::to_string(i) + ".wav"));

    const long few = peakMemory(path, dir / "few");
    const long many = peakMemory(path, dir / "many");
    EXPECT_LT(many, few + 5000) << "20 MB of entries held in memory would show";
}

} // namespace
} // namespace vornak::test

// A full disk at every size, and every signal at random moments: what the tool leaves.
#include "include/vornak_host.h"
#include "tests/support/disc_images.h"
#include "tests/support/private_tmp.h"
#include "tests/tools/transcode_clips.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <random>

namespace vornak::test {
namespace {

class EveryEnd : public TranscodeClips {
protected:
    static void SetUpTestSuite()
    {
        s_Tmp.emplace(std::filesystem::path(VORNAK_CLI).parent_path());
        TranscodeClips::SetUpTestSuite();
    }
    static void TearDownTestSuite()
    {
        TranscodeClips::TearDownTestSuite();
        s_Tmp.reset();
    }
    void SetUp() override
    {
        if (!s_Tmp->whyNot().empty()) GTEST_SKIP() << s_Tmp->whyNot();
    }

    /// What lies in a folder of the clips', but for the output, and what is mounted. An image is
    /// unmounted by a process that may outlive the tool.
    static std::set<std::string> left(const std::string &folder)
    {
        shell("for i in $(seq 100); do ls -d /tmp/Trans_mount_* || break; sleep 0.02; done");
        std::set<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(*s_Dir / folder))
            names.insert(entry.path().filename());
        for (const auto &entry : std::filesystem::directory_iterator("/tmp"))
            if (entry.path().string().starts_with(VORNAK_MOUNT_PREFIX)) names.insert(entry.path());
        names.erase("out");
        return names;
    }

    static std::uintmax_t sizeOf(const std::string &name)
    {
        std::error_code none;
        const auto size = std::filesystem::file_size(*s_Dir / name, none);
        return none ? 0 : size;
    }

private:
    static inline std::optional<PrivateTmp> s_Tmp;
};

TEST_F(EveryEnd, OfADisk)
{
    constexpr unsigned kSteps = 20;
    std::filesystem::create_directory(*s_Dir / "disk");
    for (const char *make : {"film.mkv --verify", "film.mkv", "song.mp3 --copy"}) {
        const std::string transcode =
            fmt::format("vornak transcode -p limits.xml -o disk/out {}", make);
        ASSERT_EQ(shell(transcode).status, 0);
        const auto whole = sizeOf("disk/out");
        std::filesystem::remove(*s_Dir / "disk/out");
        for (unsigned step = 0; step <= kSteps; ++step) {
            const auto pages = std::max<std::uintmax_t>(1, (whole * step / kSteps + 4095) / 4096);
            const auto result = shell(
                fmt::format("mount -t tmpfs -o size={}k none disk && {}", pages * 4, transcode));
            const auto made = sizeOf("disk/out");
            EXPECT_EQ(result.status, made == 0) << make << result.err;
            EXPECT_TRUE(made == 0 || made == whole) << make << made;
            EXPECT_EQ(made == whole, step == kSteps || pages * 4096 >= whole) << make << step;
            EXPECT_TRUE(left("disk").empty()) << make;
            ASSERT_EQ(shell("umount disk").status, 0);
        }
    }
    std::filesystem::remove(*s_Dir / "disk");
}

TEST_F(EveryEnd, BySignal)
{
    constexpr int kMoments = 3;
    constexpr int s_NotFatal[] = {SIGSEGV, SIGBUS,  SIGFPE,  SIGILL,  SIGTRAP,
                                  SIGSYS,  SIGABRT, SIGTSTP, SIGTTIN, SIGTTOU,
                                  SIGCONT, SIGSTOP, SIGCHLD, SIGURG,  SIGWINCH};
    const std::string toAll = "pkill -{} -s {}"; // the commands that mount, too
    const std::string transcode = "transcode -p limits.xml film.mkv -o out --force --verify",
                      length = "length -p pcm.xml --verify song.flac";
    const struct {
        std::string command;
        unsigned milliseconds;  // that it takes
        std::string send, next; // the next run, which removes what SIGKILL leaves
    } cases[] = {
        {transcode, 600, "kill -{} {}", transcode},
        {length, 600, "kill -{} {}", length},
        {"disc dvd.iso", 300, toAll, "disc unmount-all"},
        {"decide -p limits.xml .", 300, toAll, "decide -p limits.xml ."},
    };
    const std::string noImages = makeDiscImages(*s_Dir / "");
    if (!noImages.empty()) GTEST_SKIP() << noImages;
    std::mt19937 random(1);
    const auto before = left("");
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        if (std::ranges::count(s_NotFatal, signal) > 0 || (signal > SIGPWR && signal < SIGRTMIN))
            continue;
        for (const auto &c : cases)
            for (int moment = 0; moment < (signal < SIGRTMIN ? kMoments : 1); ++moment) {
                // a shell's background job would ignore some
                const std::string end = fmt::format(
                    "export TMPDIR=.; setsid env --default-signal vornak {} >/dev/null & "
                    "sleep 0.{:03}; {}; wait $!",
                    c.command, random() % c.milliseconds,
                    fmt::format(fmt::runtime(c.send), signal, "$!"));
                const int status = shell(end).status;
                EXPECT_TRUE(status == 0 || status == 128 + signal) << status << end;
                if (signal == SIGKILL) { // it leaves what goes with the next run
                    EXPECT_EQ(shell("TMPDIR=. vornak " + c.next).status, 0);
                }
                EXPECT_EQ(left(""), before) << end;
                const auto made = sizeOf("out");
                EXPECT_TRUE(made == 0 || made > 10000) << made;
            }
    }
}

} // namespace
} // namespace vornak::test

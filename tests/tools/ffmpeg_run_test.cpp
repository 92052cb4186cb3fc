#include "tools/transcode/ffmpeg_report.h"
#include "tools/transcode/ffmpeg_run.h"

#include <chrono>
#include <csignal>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace vornak::test {
namespace {

using Clock = std::chrono::steady_clock;

tool::FfmpegEnd runScript(const std::string &script)
{
    tool::FfmpegProgress progress(10);
    return tool::runFfmpeg({"sh", "-c", script}, progress);
}

TEST(FfmpegProgress, ShowsShareSpeedAndTimeLeft)
{
    const struct {
        double duration;
        std::vector<const char *> lines;
        const char *text;
        double fraction;
    } cases[] = {
        {100, {}, "  0%", 0},
        {100,
         {"out_time_us=25000000", "speed=2.5x", "progress=continue"},
         " 25%  2.5x  0:30 left",
         0.25},
        {100, {"out_time_us=N/A", "speed=N/A"}, "  0%", 0},
        {100, {"out_time_us=-1000", "speed= 0.001x"}, "  0%  0.0x  27:46:40 left", 0},
        {10000, {"out_time_us=400000000", "speed=  12.4x"}, "  4%  12x  12:55 left", 0.04},
        {10, {"out_time_us=12000000", "speed=1x", "progress=end"}, "100%  1.0x  0:00 left", 1},
        {10, {"out_time_us=9999999", "no sign", "", "="}, " 99%", 0.9999999},
        {0, {"out_time_us=3725000000", "speed=1e+03x"}, "1:02:05  1000x", -1},
    };
    for (const auto &c : cases) {
        tool::FfmpegProgress progress(c.duration);
        for (const char *line : c.lines) progress.takeLine(line);
        EXPECT_EQ(progress.text(), c.text);
        EXPECT_DOUBLE_EQ(progress.fraction(), c.fraction);
    }
}

TEST(FfmpegRun, ReportsItsEnd)
{
    const struct {
        const char *script;
        int status;
        std::vector<std::string> lastLines;
    } cases[] = {
        {"exit 0", 0, {}},
        {"echo one >&2; printf 'two\\rthree' >&2; exit 7", 7, {"one", "two", "three"}},
        {"kill -9 $$", 137, {}},
        {"printf '\\033[31m\\n\\n' >&2", 0, {"\\x1b[31m"}},
        {"i=0; while [ $i -lt 30000 ]; do i=$((i+1)); echo out_time_us=$i; echo $i >&2; done",
         0,
         {"29991", "29992", "29993", "29994", "29995", "29996", "29997", "29998", "29999",
          "30000"}},
        {"sleep 2 & exit 3", 3, {}}, // somebody keeps the pipes open
        {"cat", 0, {}},              // nothing to read
    };
    for (const auto &c : cases) {
        const auto end = runScript(c.script);
        EXPECT_EQ(end.status, c.status) << c.script;
        EXPECT_EQ(end.lastLines, c.lastLines) << c.script;
        EXPECT_EQ(end.interruption, 0);
    }
}

TEST(FfmpegRun, ThatIsNotThereIsAnError)
{
    tool::FfmpegProgress progress(0);
    try {
        tool::runFfmpeg({"/nowhere/ffmpeg"}, progress);
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_STREQ(error.what(), "can't run /nowhere/ffmpeg: No such file or directory "
                                   "(--ffmpeg names another program)");
    }
}

// The scripts send the tool its signals; $PPID is the tool.
TEST(FfmpegRun, EndsWhenTheToolIsInterrupted)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto end = runScript("trap 'echo ending >&2; exit 255' TERM; kill -" +
                                   std::to_string(signal) + " $PPID; while :; do sleep 0.05; done");
        EXPECT_EQ(end.interruption, signal);
        EXPECT_EQ(end.status, 255);
        EXPECT_EQ(end.lastLines, std::vector<std::string>{"ending"});
    }
}

TEST(FfmpegRun, IsKilledWhenItDoesNotEnd)
{
    const auto start = Clock::now();
    auto end = runScript("trap '' TERM; kill -INT $PPID; while :; do echo x >&2; sleep 0.1; done");
    EXPECT_EQ(end.status, 128 + SIGKILL);
    EXPECT_EQ(end.interruption, SIGINT);
    EXPECT_GT(Clock::now() - start, std::chrono::milliseconds(1900));

    end = runScript("trap '' TERM; kill -INT $PPID; sleep 0.5; kill -TERM $PPID; exec sleep 60");
    EXPECT_EQ(end.status, 128 + SIGKILL);
    EXPECT_EQ(end.interruption, SIGINT);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
}

TEST(FfmpegRun, LeavesTheSignalsAsTheyWere)
{
    sigset_t before, after;
    sigprocmask(SIG_SETMASK, nullptr, &before);
    const auto end = runScript("kill -INT $PPID; exit 4");
    EXPECT_EQ(end.interruption, SIGINT);
    sigprocmask(SIG_SETMASK, nullptr, &after);
    for (int signal = 1; signal < NSIG; ++signal)
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal)) << signal;
}

} // namespace
} // namespace vornak::test

#include "tests/support/private_mounts.h"
#include "tools/terminal/held_signals.h"
#include "tools/transcode/ffmpeg_report.h"
#include "tools/transcode/ffmpeg_run.h"

#include <chrono>
#include <csignal>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace vornak::test {
namespace {

using Clock = std::chrono::steady_clock;

struct Ran {
    tool::FfmpegEnd end;
    std::vector<std::string> messages;
};

Ran runScript(const std::string &script)
{
    const tool::HeldSignals signals;
    tool::FfmpegReport report(10, "", "");
    const tool::FfmpegEnd end = tool::runFfmpeg({.command = {"sh", "-c", script}}, signals, report);
    return {end, {report.messages().begin(), report.messages().end()}};
}

TEST(FfmpegReport, ShowsShareSpeedAndTimeLeft)
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
        tool::FfmpegReport report(c.duration, "", "");
        for (const char *line : c.lines) report.takeProgress(line);
        EXPECT_EQ(report.text(), c.text);
        EXPECT_DOUBLE_EQ(report.fraction(), c.fraction);
    }
}

TEST(FfmpegReport, KnowsWhatMessagesMean)
{
    constexpr bool kWrite = true, kRead = true, kNo = false;
    const struct {
        const char *message;
        bool couldNotWrite, sourceEnded;
    } cases[] = {
        {"av_interleaved_write_frame(): Broken pipe", kWrite, kNo},
        {"Error writing trailer of file:/out: Input/output error", kWrite, kNo},
        {"Error closing file file:/out: Invalid argument", kWrite, kNo},
        {"[out#0/mpegts @ 0x5] Error closing file: Input/output error", kWrite, kNo},
        {"[out#0/mp4 @ 0x5] Error submitting a packet to the muxer: Broken pipe", kWrite, kNo},
        {"[vost#0:0/libx264 @ 0x5] Error muxing a packet", kWrite, kNo},
        {"[out#0/mp4 @ 0x5] Task finished with error code: -28 (No space left on device)", kWrite,
         kNo},
        {"file:/out: Disk quota exceeded", kWrite, kNo},
        {"cp: error writing '/out': File too large", kWrite, kNo},
        {"[mp4 @ 0x5] Unable to re-open file:/out for shifting data: Read-only file system", kWrite,
         kNo},
        {"file:/out: Input/output error", kWrite, kNo},
        {"file:film.mkv: Input/output error", kNo, kRead},
        {"[in#0/matroska,webm @ 0x5] Error during demuxing: Input/output error", kNo, kRead},
        {"[matroska,webm @ 0x5] File ended prematurely at pos. 9 (0x9)", kNo, kRead},
        {"[mov,mp4,m4a,3gp,3g2,mj2 @ 0x5] stream 1, offset 0x9: partial file", kNo, kRead},
        {"[h264 @ 0x5] error while decoding MB 27 14", kNo, kNo},
    };
    for (const auto &c : cases) {
        tool::FfmpegReport report(10, "file:/out", "out.ts");
        report.takeMessage(c.message);
        EXPECT_EQ(report.couldNotWrite(), c.couldNotWrite) << c.message;
        EXPECT_EQ(report.sourceEnded(), c.sourceEnded) << c.message;
        EXPECT_EQ(report.damagedPlaces() > 0, !c.couldNotWrite && !c.sourceEnded) << c.message;
        EXPECT_EQ(report.messages().back().find("file:/out"), std::string::npos);
    }
}

TEST(FfmpegReport, CountsDamagedPlaces)
{
    tool::FfmpegReport report(10, "file:/out", "out.ts");
    EXPECT_EQ(report.damagedPlaces(), 0U);
    for (const char *message :
         {"[h264 @ 0x1] cbp too large (67) at 3 4", "[h264 @ 0x1] error while decoding MB 3 4",
          "[h264 @ 0x2] error while decoding MB 17 0", // a second place
          "[aac @ 0x3] invalid band type", "Error while decoding stream #0:1: Invalid data",
          "[aac @ 0x3] invalid band type"})
        report.takeMessage(message);
    EXPECT_EQ(report.damagedPlaces(), 3U);
}

TEST(FfmpegRun, ReportsItsEnd)
{
    const struct {
        const char *script;
        int status;
        std::vector<std::string> messages;
    } cases[] = {
        {"exit 0", 0, {}},
        {"echo one >&2; printf 'two\\rthree' >&2; exit 7", 7, {"one", "two", "three"}},
        {"kill -9 $$", 137, {}},
        {"printf '\\033[31m\\n\\n' >&2", 0, {"\\x1b[31m"}},
        {"i=0; while [ $i -lt 30000 ]; do i=$((i+1)); echo out_time_us=$i >&3; echo $i >&2; done",
         0,
         {"29991", "29992", "29993", "29994", "29995", "29996", "29997", "29998", "29999",
          "30000"}},
        {"sleep 2 & exit 3", 3, {}}, // somebody keeps the pipes open
        {"cat", 0, {}},              // nothing to read
    };
    for (const auto &c : cases) {
        const auto [end, messages] = runScript(c.script);
        EXPECT_EQ(end.status, c.status) << c.script;
        EXPECT_EQ(messages, c.messages) << c.script;
        EXPECT_EQ(end.interruption, 0);
    }
}

TEST(FfmpegRun, StartsWhereRootAloneMayWriteNowhere)
{
    if (geteuid() != 0) GTEST_SKIP() << "needs root, for mounts of its own and to be another user";
    EXPECT_EXIT(
        {
            const bool ready = enterPrivateMounts().empty() &&
                               mount("none", "/mnt", "tmpfs", 0, nullptr) == 0 &&
                               mknod("/mnt/null", S_IFCHR | 0644, makedev(1, 3)) == 0 &&
                               mount("/mnt/null", "/dev/null", nullptr, MS_BIND, nullptr) == 0 &&
                               setuid(65534) == 0;
            _exit(ready ? runScript("exit 3").end.status : 3);
        },
        testing::ExitedWithCode(3), "");
}

// The scripts send the tool its signals; $PPID is the tool.
TEST(FfmpegRun, EndsWhenTheToolIsInterrupted)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto [end, messages] =
            runScript("trap 'echo ending >&2; exit 255' TERM; kill -" + std::to_string(signal) +
                      " $PPID; while :; do sleep 0.05; done");
        EXPECT_EQ(end.interruption, signal);
        EXPECT_EQ(end.status, 255);
        EXPECT_EQ(messages, std::vector<std::string>{"ending"});
    }
}

TEST(FfmpegRun, IsKilledWhenItDoesNotEnd)
{
    const auto start = Clock::now();
    auto end =
        runScript("trap '' TERM; kill -INT $PPID; while :; do echo x >&2; sleep 0.1; done").end;
    EXPECT_EQ(end.status, 128 + SIGKILL);
    EXPECT_EQ(end.interruption, SIGINT);
    EXPECT_GT(Clock::now() - start, std::chrono::milliseconds(1900));

    end =
        runScript("trap '' TERM; kill -INT $PPID; sleep 0.5; kill -TERM $PPID; exec sleep 60").end;
    EXPECT_EQ(end.status, 128 + SIGKILL);
    EXPECT_EQ(end.interruption, SIGINT);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
}

TEST(FfmpegRun, LeavesTheSignalsAsTheyWere)
{
    sigset_t before, after;
    sigprocmask(SIG_SETMASK, nullptr, &before);
    const auto end = runScript("kill -INT $PPID; exit 4").end;
    EXPECT_EQ(end.interruption, SIGINT);
    sigprocmask(SIG_SETMASK, nullptr, &after);
    for (int signal = 1; signal < NSIG; ++signal)
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal)) << signal;
}

} // namespace
} // namespace vornak::test

#include "tools/transcode/ffmpeg_run.h"

#include "tools/terminal/child.h"
#include "tools/terminal/held_signals.h"
#include "tools/transcode/ffmpeg_report.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::size_t kLineSize = 1000;
constexpr std::chrono::seconds kGrace{2}; ///< to end by itself; its output is lost anyway

/// A pipe whose lines come out of this end as they are written at the other.
class LinePipe {
public:
    LinePipe() { fcntl(pipe_.readEnd(), F_SETFL, O_NONBLOCK); }

    int readEnd() const { return pipe_.readEnd(); }
    int writeEnd() const { return pipe_.writeEnd(); }
    void closeWriteEnd() { pipe_.closeWriteEnd(); }

    /// Hands out the lines that have come so far. @param last  also what has no line end yet
    template <class Take>
    void drain(bool last, Take take)
    {
        char block[4096];
        ssize_t got = 0;
        while ((got = read(readEnd(), block, sizeof block)) > 0 || (got < 0 && errno == EINTR))
            for (ssize_t i = 0; i < got; ++i)
                if (block[i] == '\n' || block[i] == '\r')
                    handOut(take);
                else if (line_.size() < kLineSize)
                    line_ += block[i];
        if (got == 0)
            pipe_.closeReadEnd(); // without writers it would wake the wait again and again
        if (last) handOut(take);
    }

private:
    template <class Take>
    void handOut(Take &take)
    {
        if (!line_.empty()) take(line_);
        line_.clear();
    }

    Pipe pipe_;
    std::string line_;
};

Child start(const FfmpegRun &run, int messages, int progress)
try {
    if (geteuid() == 0) unsetenv("FFREPORT"); // a name that ffmpeg overwrites; whose is unknown
    const int descriptors[] = {kNothing, run.standardOutput, messages, progress, run.folder};
    return startProgram(run.command, descriptors, Orphan::IsKilled);
} catch (const std::system_error &error) {
    throw std::runtime_error(std::string(error.what()) + " (--ffmpeg names another program)");
}

/// A run at work: the child, what it says, and what the user says meanwhile.
class Watch {
public:
    Watch(const FfmpegRun &run, const HeldSignals &signals, FfmpegReport &report)
        : signals_(signals), report_(report),
          child_(start(run, messages_.writeEnd(), progress_.writeEnd()))
    {
        messages_.closeWriteEnd();
        progress_.closeWriteEnd();
    }

    FfmpegEnd untilItEnds()
    {
        while (!child_.hasEnded()) {
            wait();
            takeSignals();
            drain(false);
        }
        takeSignals();
        drain(true);
        return {child_.status(), child_.signal(), interruption_};
    }

private:
    using Clock = std::chrono::steady_clock;

    void wait()
    {
        pollfd watched[] = {{signals_.descriptor(), POLLIN, 0},
                            {messages_.readEnd(), POLLIN, 0},
                            {progress_.readEnd(), POLLIN, 0}};
        int timeout = -1;
        if (interruption_ != 0) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
            timeout = std::max(static_cast<int>(left.count()), 0);
            if (timeout == 0) child_.send(SIGKILL);
        }
        poll(watched, std::size(watched), timeout);
    }

    void takeSignals()
    {
        while (const int signal = signals_.takeInterruption()) {
            const bool again = interruption_ != 0;
            child_.send(again ? SIGKILL : SIGTERM);
            if (again) continue;
            interruption_ = signal;
            deadline_ = Clock::now() + kGrace;
        }
    }

    void drain(bool last)
    {
        messages_.drain(last, [this](const std::string &line) { report_.takeMessage(line); });
        progress_.drain(last, [this](const std::string &line) { report_.takeProgress(line); });
    }

    const HeldSignals &signals_;
    FfmpegReport &report_;
    LinePipe messages_, progress_;
    Child child_;
    int interruption_ = 0;
    Clock::time_point deadline_{};
};

} // namespace

FfmpegEnd runFfmpeg(const FfmpegRun &run, const HeldSignals &signals, FfmpegReport &report)
{
    const FfmpegEnd end = Watch(run, signals, report).untilItEnds();
    report.hide();
    return end;
}

} // namespace vornak::tool

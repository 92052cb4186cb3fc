#include "tools/transcode/ffmpeg_run.h"

#include "tools/terminal/child.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_report.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <deque>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::size_t kLinesKept = 10; ///< of standard error
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

Child start(const std::vector<std::string> &command, int out, int err)
try {
    const int descriptors[] = {kNothing, out, err};
    return startProgram(command, descriptors, Orphan::GoesOn);
} catch (const std::system_error &error) {
    throw std::runtime_error(std::string(error.what()) + " (--ffmpeg names another program)");
}

/// One run: the child, what it says, and what the user says meanwhile.
class Run {
public:
    Run(const std::vector<std::string> &command, FfmpegProgress &progress)
        : progress_(progress), child_(start(command, out_.writeEnd(), err_.writeEnd()))
    {
        out_.closeWriteEnd();
        err_.closeWriteEnd();
    }

    FfmpegEnd watch()
    {
        while (!child_.hasEnded()) {
            wait();
            takeSignals();
            drain(false);
        }
        takeSignals();
        drain(true);
        end_.status = child_.status();
        end_.lastLines.assign(lines_.begin(), lines_.end());
        return end_;
    }

private:
    using Clock = std::chrono::steady_clock;

    void wait()
    {
        pollfd watched[] = {{signals_.descriptor(), POLLIN, 0},
                            {out_.readEnd(), POLLIN, 0},
                            {err_.readEnd(), POLLIN, 0}};
        int timeout = -1;
        if (end_.interruption != 0) {
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
            const bool again = end_.interruption != 0;
            child_.send(again ? SIGKILL : SIGTERM);
            if (again) continue;
            end_.interruption = signal;
            deadline_ = Clock::now() + kGrace;
        }
    }

    void drain(bool last)
    {
        out_.drain(last, [this](const std::string &line) { progress_.takeLine(line); });
        err_.drain(last, [this](const std::string &line) {
            if (lines_.size() == kLinesKept) lines_.pop_front();
            lines_.push_back(printable(line));
        });
    }

    FfmpegProgress &progress_;
    HeldSignals signals_;
    LinePipe out_, err_;
    Child child_;
    std::deque<std::string> lines_;
    FfmpegEnd end_;
    Clock::time_point deadline_{};
};

} // namespace

FfmpegEnd runFfmpeg(const std::vector<std::string> &command, FfmpegProgress &progress)
{
    Run run(command, progress);
    FfmpegEnd end = run.watch();
    progress.hide();
    return end;
}

} // namespace vornak::tool

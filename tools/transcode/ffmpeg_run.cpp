#include "tools/transcode/ffmpeg_run.h"

#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_progress.h"

#include "platform/descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <deque>
#include <fcntl.h>
#include <fmt/format.h>
#include <iterator>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr int kSignalled = 128;        ///< added to a signal's number, as the shell does
constexpr std::size_t kLinesKept = 10; ///< of standard error
constexpr std::size_t kLineSize = 1000;
constexpr std::chrono::seconds kGrace{2}; ///< to end by itself; its output is lost anyway

constexpr int s_Interruptions[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

[[noreturn]] void failFor(const std::string &what, int error)
{
    throw std::runtime_error(what + ": " + std::generic_category().message(error));
}

/// Signals that wait in a descriptor instead of acting on the tool.
class SignalQueue {
public:
    SignalQueue() : descriptor_(open(before_))
    {
        if (!descriptor_) failFor("can't wait for signals", errno);
    }
    ~SignalQueue() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SignalQueue(const SignalQueue &) = delete;
    SignalQueue &operator=(const SignalQueue &) = delete;

    const sigset_t &before() const { return before_; }
    int descriptor() const { return descriptor_.get(); }

    /// The next signal, or 0.
    int take() const
    {
        signalfd_siginfo info = {};
        return read(descriptor_.get(), &info, sizeof info) == sizeof info
                   ? static_cast<int>(info.ssi_signo)
                   : 0;
    }

private:
    static int open(sigset_t &before)
    {
        std::signal(SIGCHLD, SIG_DFL); // where it is ignored, nobody can wait for a child
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGCHLD);
        for (const int signal : s_Interruptions) {
            struct sigaction action {};
            sigaction(signal, nullptr, &action);
            if (action.sa_handler != SIG_IGN) sigaddset(&signals, signal); // nohup stays so
        }
        sigprocmask(SIG_BLOCK, &signals, &before);
        return signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    }

    sigset_t before_{};
    Descriptor descriptor_;
};

/// A pipe whose lines come out of this end as they are written at the other.
class LinePipe {
public:
    LinePipe()
    {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0) failFor("can't make a pipe", errno);
        fcntl(ends_[0], F_SETFL, O_NONBLOCK);
    }
    ~LinePipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    LinePipe(const LinePipe &) = delete;
    LinePipe &operator=(const LinePipe &) = delete;

    int readEnd() const { return ends_[0]; }
    int writeEnd() const { return ends_[1]; }
    void closeWriteEnd() { closeEnd(1); }

    /// Hands out the lines that have come so far. @param last  also what has no line end yet
    template <class Take>
    void drain(bool last, Take take)
    {
        char block[4096];
        ssize_t got = 0;
        while ((got = read(ends_[0], block, sizeof block)) > 0 || (got < 0 && errno == EINTR))
            for (ssize_t i = 0; i < got; ++i)
                if (block[i] == '\n' || block[i] == '\r')
                    handOut(take);
                else if (line_.size() < kLineSize)
                    line_ += block[i];
        if (got == 0) closeEnd(0); // without writers it would wake the wait again and again
        if (last) handOut(take);
    }

private:
    template <class Take>
    void handOut(Take &take)
    {
        if (!line_.empty()) take(line_);
        line_.clear();
    }

    void closeEnd(std::size_t end)
    {
        if (ends_[end] >= 0) close(ends_[end]);
        ends_[end] = -1;
    }

    std::array<int, 2> ends_{-1, -1};
    std::string line_;
};

pid_t start(const std::vector<std::string> &command, const sigset_t &signals, int out, int err)
{
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, err, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &signals);
    pid_t child = 0;
    const int error =
        posix_spawnp(&child, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        failFor(fmt::format("can't run {} (--ffmpeg names another program)",
                            printable(command.front())),
                error);
    return child;
}

/// One run: the child, what it says, and what the user says meanwhile.
class Run {
public:
    Run(const std::vector<std::string> &command, TranscodeProgress &progress) : progress_(progress)
    {
        child_ = start(command, signals_.before(), out_.writeEnd(), err_.writeEnd());
        out_.closeWriteEnd();
        err_.closeWriteEnd();
    }
    ~Run()
    {
        if (child_ <= 0) return;
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    TranscoderEnd watch()
    {
        while (child_ > 0) {
            wait();
            takeSignals();
            drain(false);
        }
        drain(true);
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
            if (timeout == 0) kill(child_, SIGKILL);
        }
        poll(watched, std::size(watched), timeout);
    }

    void passOn(int signal)
    {
        const bool again = end_.interruption != 0;
        kill(child_, again ? SIGKILL : SIGTERM);
        if (again) return;
        end_.interruption = signal;
        deadline_ = Clock::now() + kGrace;
    }

    void takeSignals()
    {
        while (const int signal = signals_.take()) {
            if (signal != SIGCHLD) {
                passOn(signal);
                continue;
            }
            int status = 0;
            if (waitpid(child_, &status, WNOHANG) != child_) continue;
            child_ = 0;
            end_.status = WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
            return;
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

    TranscodeProgress &progress_;
    SignalQueue signals_;
    LinePipe out_, err_;
    std::deque<std::string> lines_;
    TranscoderEnd end_;
    Clock::time_point deadline_{};
    pid_t child_ = 0;
};

} // namespace

TranscoderEnd runTranscoder(const std::vector<std::string> &command, TranscodeProgress &progress)
{
    Run run(command, progress);
    TranscoderEnd end = run.watch();
    progress.hide();
    return end;
}

} // namespace vornak::tool

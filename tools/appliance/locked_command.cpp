#include "tools/appliance/locked_command.h"

#include "include/vornak.h"
#include "tools/appliance/lock_file.h"
#include "tools/terminal/child.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/output.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fmt/format.h>
#include <optional>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr int kCannotRun = 126;
constexpr int kNotFound = 127;

[[noreturn]] void failFor(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

void sayIfHeld()
{
    int count = 0;
    sem_getvalue(vornak_db_mutex, &count);
    if (count == 0 && isatty(STDERR_FILENO) == 1)
        complain("waiting for the database lock (if its holder died: vornak lock repair)");
}

/// A moment from now, for sem_clockwait().
timespec shortly()
{
    constexpr long kInterval = 100'000'000; // nanoseconds that a user's signal may have to wait
    constexpr long kSecond = 1'000'000'000;
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_nsec += kInterval;
    time.tv_sec += time.tv_nsec / kSecond;
    time.tv_nsec %= kSecond;
    return time;
}

class HeldLock {
public:
    /// Waits, unless a signal that would end the tool comes first.
    explicit HeldLock(const HeldSignals &signals)
    {
        const std::optional<LockFile> file = lookAtLock();
        if (file && !file->isOwn) complain(fmt::format("{}: {}", kLockName, describeOwner(*file)));
        if (Vornak_Mutex_Init(1) != 0) failFor("can't open the database lock");
        sayIfHeld();
        while (!isHeld_ && interruption_ == 0) {
            const timespec until = shortly();
            isHeld_ = sem_clockwait(vornak_db_mutex, CLOCK_MONOTONIC, &until) == 0;
            if (!isHeld_ && errno != ETIMEDOUT && errno != EINTR)
                failFor("can't wait for the database lock");
            interruption_ = signals.takeInterruption();
        }
    }
    ~HeldLock()
    {
        if (isHeld_) Vornak_Mutex_Unlock();
        Vornak_Mutex_Close();
    }
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;

    /// The signal that came before the command could run, or 0.
    int interruption() const { return interruption_; }

private:
    bool isHeld_ = false;
    int interruption_ = 0;
};

/// Passes on what other processes send; what the terminal sends reaches the program by itself.
int waitForEnd(Child &program, const HeldSignals &signals)
{
    while (!program.hasEnded()) {
        pollfd watched = {signals.descriptor(), POLLIN, 0};
        poll(&watched, 1, -1);
        while (const auto info = signals.take())
            if (info->ssi_signo != SIGCHLD && info->ssi_code <= 0)
                program.send(static_cast<int>(info->ssi_signo));
    }
    return program.status();
}

} // namespace

int runLocked(const std::vector<std::string> &command)
{
    const HeldSignals signals;
    const HeldLock lock(signals);
    if (const int signal = lock.interruption()) {
        complain("interrupted before the command could run");
        return kSignalled + signal;
    }
    try {
        constexpr int kSameAsHere[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
        Child program = startProgram(command, kSameAsHere, Orphan::GoesOn);
        return waitForEnd(program, signals);
    } catch (const std::system_error &error) {
        complain(error.what());
        return error.code().value() == ENOENT ? kNotFound : kCannotRun;
    }
}

} // namespace vornak::tool

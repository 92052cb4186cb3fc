#include "tools/appliance/locked_command.h"

#include "include/vornak.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <cerrno>
#include <csignal>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr int kSignalled = 128; ///< added to a signal's number, as the shell does
constexpr int kCannotRun = 126;
constexpr int kNotFound = 127;

constexpr int s_Interruptions[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// Left to their default action: faults of the tool itself, and what stops and resumes a job.
constexpr int s_NotHeldBack[] = {SIGSEGV, SIGBUS,  SIGFPE,  SIGILL,  SIGTRAP, SIGSYS,
                                 SIGABRT, SIGTSTP, SIGTTIN, SIGTTOU, SIGCONT};

volatile std::sig_atomic_t interruptedBy = 0;

// A signal that comes right before the wait begins doesn't end it, so an alarm follows.
void noteInterruption(int signal)
{
    if (signal != SIGALRM) interruptedBy = signal;
    alarm(1);
}

void catchInterruptions()
{
    struct sigaction action {};
    action.sa_handler = noteInterruption; // without SA_RESTART: the wait is to end
    sigaction(SIGALRM, &action, nullptr);
    for (const int signal : s_Interruptions) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr); // nohup stays so
    }
}

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

class HeldLock {
public:
    /// Waits, unless a signal of the user comes first.
    HeldLock()
    {
        if (Vornak_Mutex_Init(1) != 0) failFor("can't open the database lock");
        sayIfHeld();
        while (!held_ && interruptedBy == 0) {
            held_ = Vornak_Mutex_Lock() == 0;
            if (!held_ && errno != EINTR) failFor("can't wait for the database lock");
        }
    }
    ~HeldLock()
    {
        if (held_) Vornak_Mutex_Unlock();
        Vornak_Mutex_Close();
    }
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;

private:
    bool held_ = false;
};

/// Signals that no longer act on the tool but wait to be taken.
class HeldBackSignals {
public:
    HeldBackSignals()
    {
        sigfillset(&signals_);
        for (const int signal : s_NotHeldBack) sigdelset(&signals_, signal);
        sigprocmask(SIG_BLOCK, &signals_, &before_);
    }
    ~HeldBackSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    HeldBackSignals(const HeldBackSignals &) = delete;
    HeldBackSignals &operator=(const HeldBackSignals &) = delete;

    const sigset_t &before() const { return before_; }
    int take(siginfo_t &info) const { return sigwaitinfo(&signals_, &info); }

private:
    sigset_t signals_{}, before_{};
};

/// Returns 0 or the error.
int start(const std::vector<std::string> &command, const sigset_t &signals, pid_t &child)
{
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &signals);
    const int error =
        posix_spawnp(&child, arguments[0], nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    return error;
}

/// Passes on what other processes send; what the terminal sends reaches the program by itself.
int waitForEnd(pid_t child, const HeldBackSignals &signals)
{
    for (;;) {
        siginfo_t info{};
        const int signal = signals.take(info);
        if (signal == SIGCHLD) {
            int status = 0;
            if (waitpid(child, &status, WNOHANG) != child) continue;
            return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
        }
        if (signal > 0 && info.si_code <= 0) kill(child, signal);
    }
}

} // namespace

int runLocked(const std::vector<std::string> &command)
{
    catchInterruptions();
    const HeldLock lock;
    const HeldBackSignals signals;
    if (interruptedBy != 0) {
        complain("interrupted before the command could run");
        return kSignalled + interruptedBy;
    }

    std::signal(SIGCHLD, SIG_DFL); // where it is ignored, nobody can wait for a child
    pid_t child = 0;
    const int error = start(command, signals.before(), child);
    if (error == 0) return waitForEnd(child, signals);
    complain(fmt::format("can't run {}: {}", printable(command.front()),
                         std::generic_category().message(error)));
    return error == ENOENT ? kNotFound : kCannotRun;
}

} // namespace vornak::tool

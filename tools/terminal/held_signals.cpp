#include "tools/terminal/held_signals.h"

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr int s_NeverHeld[] = {
    SIGSEGV, SIGBUS,   SIGFPE,  SIGILL,  SIGTRAP, SIGSYS, SIGABRT, // faults
    SIGTSTP, SIGTTIN,  SIGTTOU, SIGCONT,                           // a job's stops
    SIGURG,  SIGWINCH,                                             // end nothing
};

/// The kernel's word that the tool wrote to a pipe without a reader; not somebody's wish to end it.
bool isOwnBrokenPipe(const signalfd_siginfo &info)
{
    return info.ssi_signo == SIGPIPE && info.ssi_pid == static_cast<std::uint32_t>(getpid());
}

bool isIgnored(int signal)
{
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

int hold(sigset_t &before)
{
    std::signal(SIGCHLD, SIG_DFL); // where it is ignored, nobody can wait for a child
    sigset_t signals;
    sigfillset(&signals);
    for (const int signal : s_NeverHeld) sigdelset(&signals, signal);
    for (int signal = 1; signal < NSIG; ++signal)
        if (isIgnored(signal) && signal != SIGPIPE) sigdelset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &before);
    return signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

} // namespace

HeldSignals::HeldSignals() : queue_(hold(before_))
{
    if (queue_) return;
    const int error = errno;
    sigprocmask(SIG_SETMASK, &before_, nullptr);
    throw std::system_error(error, std::generic_category(), "can't wait for signals");
}

HeldSignals::~HeldSignals()
{
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

std::optional<signalfd_siginfo> HeldSignals::take() const
{
    signalfd_siginfo info = {};
    do {
        if (read(queue_.get(), &info, sizeof info) != sizeof info) return std::nullopt;
    } while (isOwnBrokenPipe(info));
    return info;
}

int HeldSignals::takeInterruption() const
{
    while (const auto info = take())
        if (info->ssi_signo != SIGCHLD) return static_cast<int>(info->ssi_signo);
    return 0;
}

} // namespace vornak::tool

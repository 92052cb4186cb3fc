#include "tools/appliance/shielded_work.h"

#include "tools/terminal/child.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/output.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace vornak::tool {

namespace {

/// The shell that mounts ends the hold on signals for itself and what it runs, but lets those be
/// that were ignored when it started. Whoever stops a service sends them to all of its processes.
void ignoreHeldSignals()
{
    sigset_t held;
    sigprocmask(SIG_BLOCK, nullptr, &held);
    for (int signal = 1; signal < NSIG; ++signal)
        if (sigismember(&held, signal) == 1) std::signal(signal, SIG_IGN);
}

} // namespace

// The library mounts and unmounts with commands of the shell. Ctrl-C would reach them, too, and
// end a mount half-way or the unmounting, so the work has a process group that isn't the
// terminal's. That is a process of its own, since the tool must stay in the job of its shell.
std::string runShielded(const std::function<std::string()> &work)
{
    const HeldSignals held;
    Pipe result;
    Child worker(
        [&] {
            setpgid(0, 0);
            ignoreHeldSignals();
            if (geteuid() == 0) setenv("PATH", pathForRoot().c_str(), 1);
            result.closeReadEnd();
            if (dup2(result.writeEnd(), STDOUT_FILENO) < 0) return 1;
            writeOut(work());
            return 0;
        },
        Orphan::GoesOn); // a killed tool leaves no mount either
    std::string text = result.readAll();
    worker.wait();
    if (worker.status() != 0) throw std::runtime_error("the work was broken off");
    return text;
}

} // namespace vornak::tool

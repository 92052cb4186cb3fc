#include "tools/appliance/shielded_work.h"

#include "tools/terminal/child.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/output.h"

#include <stdexcept>
#include <unistd.h>

namespace vornak::tool {

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

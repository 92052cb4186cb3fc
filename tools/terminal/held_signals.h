// Signals that wait while the tool has something to put in order.
#pragma once

#include "base/descriptor.h"

#include <csignal>
#include <optional>
#include <sys/signalfd.h>

namespace vornak::tool {

/**
 * While it lives, every signal that would end the tool waits to be taken, and so does SIGCHLD.
 * What nobody takes acts as it always does once the last of these is gone. Not among them are
 * faults of the tool itself, what stops and resumes a job, and what the tool's caller has it
 * ignore (nohup does). For a tool of one thread; children have them held, too, until they run
 * another program.
 */
class HeldSignals {
public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

    /// Readable while a signal waits.
    int descriptor() const { return queue_.get(); }

    /// The next signal that has come; doesn't wait for one.
    std::optional<signalfd_siginfo> take() const;

    /// The next one that would end the tool, or 0.
    int takeInterruption() const;

private:
    sigset_t before_{};
    Descriptor queue_;
};

} // namespace vornak::tool

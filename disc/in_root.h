// Operations inside another root directory, without a change of the caller's own.
#pragma once

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace vornak {

// The host may have other threads, whose locks the child inherits in any state: nothing but the
// operation itself runs here. What it throws must not reach the caller's code, hence noexcept.
template <class Operation>
[[noreturn]] void endAfter(const char *rootDir, const Operation &operation) noexcept
{
    if (!rootDir || chroot(rootDir) != 0) _exit(1);
    _exit(operation() == 0 ? 0 : 1);
}

/// Runs an operation in a child process whose root is `rootDir`, and waits for it. 0 when it
/// returned 0; 1 for any other end.
template <class Operation>
int runInRoot(const char *rootDir, const Operation &operation)
{
    const pid_t child = fork();
    if (child < 0) return 1;
    if (child == 0) endAfter(rootDir, operation);
    int status = 1;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return 1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

} // namespace vornak

#include "tools/appliance/shielded_work.h"

#include "tools/terminal/output.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

class DeferredSignals {
public:
    DeferredSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaddset(&signals, signal);
        pthread_sigmask(SIG_BLOCK, &signals, &before_);
    }
    ~DeferredSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    DeferredSignals(const DeferredSignals &) = delete;
    DeferredSignals &operator=(const DeferredSignals &) = delete;

private:
    sigset_t before_{};
};

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

std::string readAll(int pipe)
{
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t got = read(pipe, block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return text;
        text.append(block, static_cast<std::size_t>(got));
    }
}

/// The life of the process that works.
[[noreturn]] void workAndEnd(const std::function<std::string()> &work, int pipe) noexcept
{
    setpgid(0, 0); // a group that isn't the terminal's gets no Ctrl-C
    try {
        if (dup2(pipe, STDOUT_FILENO) < 0) fail("dup2");
        writeOut(work());
        _exit(EXIT_SUCCESS);
    } catch (const std::exception &error) {
        complain(error.what());
        _exit(EXIT_FAILURE);
    }
}

} // namespace

std::string runShielded(const std::function<std::string()> &work)
{
    const DeferredSignals deferred;
    int pipe[2];
    if (pipe2(pipe, O_CLOEXEC) != 0) fail("pipe");
    const pid_t worker = fork();
    if (worker == 0) workAndEnd(work, pipe[1]);
    close(pipe[1]);
    const std::string text = worker > 0 ? readAll(pipe[0]) : std::string{};
    close(pipe[0]);
    if (worker < 0) fail("fork");
    int status = 0;
    while (waitpid(worker, &status, 0) < 0)
        if (errno != EINTR) fail("waitpid");
    if (status != 0) throw std::runtime_error("the work was broken off");
    return text;
}

} // namespace vornak::tool

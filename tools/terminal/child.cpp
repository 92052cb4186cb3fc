#include "tools/terminal/child.h"

#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vornak::tool {
namespace {

[[noreturn]] void fail(const std::string &what, int error)
{
    throw std::system_error(error, std::generic_category(), what);
}

/// The life of a child.
[[noreturn]] void live(const std::function<int()> &work, Orphan orphan, pid_t parent) noexcept
{
    // Asked of the kernel, so it also holds when the tool can't do anything any more.
    if (orphan == Orphan::IsKilled) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) _exit(EXIT_FAILURE);
    }
    sigset_t ofChildren; // it may have some of its own
    sigemptyset(&ofChildren);
    sigaddset(&ofChildren, SIGCHLD);
    sigprocmask(SIG_UNBLOCK, &ofChildren, nullptr);
    try {
        _exit(work());
    } catch (const std::exception &error) {
        complain(error.what());
        _exit(EXIT_FAILURE);
    }
}

/// Not everywhere may all users write there; then writing fails.
int openNothing()
{
    const int opened = open("/dev/null", O_RDWR | O_CLOEXEC);
    return opened < 0 ? open("/dev/null", O_RDONLY | O_CLOEXEC) : opened;
}

/// Gives the descriptors their numbers. All are moved out of the way first.
bool arrange(std::span<const int> descriptors)
{
    const int above = static_cast<int>(descriptors.size());
    std::vector<int> moved;
    for (const int descriptor : descriptors) {
        const int from = descriptor == kNothing ? openNothing() : descriptor;
        moved.push_back(fcntl(from, F_DUPFD_CLOEXEC, above));
    }
    for (int number = 0; number < above; ++number)
        if (dup2(moved[static_cast<std::size_t>(number)], number) < 0) return false;
    return true;
}

void releaseSignals()
{
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL); // which the tool ignores
}

std::string findForRoot(const std::string &name)
{
    std::istringstream folders(pathForRoot());
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string program = folder.append("/").append(name);
        if (access(program.c_str(), X_OK) == 0) return program;
    }
    return {};
}

std::string findProgram(const std::string &name)
{
    return geteuid() == 0 && name.find('/') == std::string::npos ? findForRoot(name) : name;
}

} // namespace

std::string pathForRoot()
{
    const char *const path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    std::string trusted;
    for (std::string folder; std::getline(folders, folder, ':');) {
        struct stat info = {};
        if (!folder.starts_with('/') || stat(folder.c_str(), &info) != 0) continue;
        if (info.st_uid != 0 || (info.st_mode & S_IWOTH) != 0) continue;
        if (!trusted.empty()) trusted += ':';
        trusted += folder;
    }
    return trusted.empty() ? "/usr/bin:/bin" : trusted; // an empty one is the working directory
}

Pipe::Pipe()
{
    if (pipe2(ends_, O_CLOEXEC) != 0) fail("can't make a pipe", errno);
}

Pipe::~Pipe()
{
    closeReadEnd();
    closeWriteEnd();
}

void Pipe::closeEnd(int end)
{
    if (ends_[end] >= 0) close(ends_[end]);
    ends_[end] = -1;
}

std::string Pipe::readAll()
{
    closeWriteEnd();
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t got = read(readEnd(), block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return text;
        text.append(block, static_cast<std::size_t>(got));
    }
}

Child::Child(const std::function<int()> &work, Orphan orphan)
{
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) live(work, orphan, parent);
    if (process_ < 0) fail("can't start a process", errno);
}

Child::Child(Child &&other) noexcept : process_(std::exchange(other.process_, 0)), end_(other.end_)
{}

Child::~Child()
{
    if (process_ == 0) return;
    send(SIGKILL);
    reap(0);
}

bool Child::reap(int options)
{
    pid_t ended = 0;
    do ended = waitpid(process_, &end_, options);
    while (ended < 0 && errno == EINTR);
    if (ended != 0) process_ = 0;
    return process_ == 0;
}

void Child::send(int signal) const
{
    if (process_ > 0) kill(process_, signal);
}

bool Child::hasEnded()
{
    return process_ == 0 || reap(WNOHANG);
}

void Child::wait()
{
    if (process_ != 0) reap(0);
}

int Child::signal() const
{
    return WIFSIGNALED(end_) ? WTERMSIG(end_) : 0;
}

int Child::status() const
{
    return WIFEXITED(end_) ? WEXITSTATUS(end_) : kSignalled + signal();
}

// posix_spawn() can't ask for a signal at the tool's death.
Child startProgram(const std::vector<std::string> &command, std::span<const int> descriptors,
                   Orphan orphan)
{
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    const std::string program = findProgram(command.front());
    Pipe failure; // closed when the program starts, or else it tells the error
    Child child(
        [&] {
            const int above = static_cast<int>(descriptors.size());
            const int report = fcntl(failure.writeEnd(), F_DUPFD_CLOEXEC, above);
            if (arrange(descriptors)) {
                releaseSignals();
                execvp(program.c_str(), arguments.data());
            }
            const int error = errno;
            return write(report, &error, sizeof error) < 0 ? 1 : 127;
        },
        orphan);
    const std::string told = failure.readAll();
    int error = 0;
    if (told.size() != sizeof error) return child;
    std::memcpy(&error, told.data(), sizeof error);
    fail("can't run " + printable(command.front()), error);
}

} // namespace vornak::tool

#include "tools/terminal/output.h"

#include "tools/terminal/exit_status.h"
#include "tools/terminal/printable.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vornak::tool {
namespace {

constexpr Colours s_Coloured = {"\033[1m", "\033[32m", "\033[33m", "\033[31m", "\033[0m"};
constexpr Colours s_Plain = {};

constexpr std::string_view kClearLine = "\r\033[K";

int s_Output = STDOUT_FILENO;          // where the tool's own output goes
bool s_HasStatusLine = false;          // on the terminal now
void (*s_OnBrokenPipe)(int) = SIG_DFL; // as the tool's caller has it
ColourUse s_ColourUse = ColourUse::Auto;

/// Writes all of it, or returns the error.
int writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// The file's kind, as in its mode; 0: unknown.
mode_t kindOf(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? status.st_mode & S_IFMT : 0;
}

/// What clears the status line, if there is one, for a text that takes its place.
std::string_view takeStatusLine()
{
    return std::exchange(s_HasStatusLine, false) ? kClearLine : std::string_view();
}

/// What names a path that is longer than any that the system takes is cut in its middle, between
/// characters.
std::string inOneLine(std::string_view message)
{
    constexpr std::size_t kShown = 100; // of each end

    const auto isWithin = [&](std::size_t at) { return (message[at] & 0xC0) == 0x80; };
    if (message.size() < PATH_MAX) return std::string(message);
    std::size_t head = kShown, tail = message.size() - kShown;
    while (isWithin(head)) --head;
    while (isWithin(tail)) ++tail;
    return fmt::format("{} ... {}", message.substr(0, head), message.substr(tail));
}

bool isColoured()
{
    if (s_ColourUse != ColourUse::Auto) return s_ColourUse == ColourUse::Always;
    const char *refused = std::getenv("NO_COLOR");
    const char *terminal = std::getenv("TERM");
    return (!refused || !*refused) && isatty(s_Output) == 1 &&
           (!terminal || std::string_view(terminal) != "dumb");
}

} // namespace

// Threads may still be at work, so the process ends here and now.
void writeOut(std::string_view text)
{
    // what reads it may show it on the same terminal
    if (kindOf(s_Output) != S_IFREG) setStatusLine({});
    const int error = writeAll(s_Output, text);
    if (error == 0 || (error == EIO && kindOf(s_Output) == S_IFCHR)) return; // a lost terminal
    if (error != EPIPE) complain("standard output: " + std::generic_category().message(error));
    std::signal(SIGPIPE, s_OnBrokenPipe);
    if (error == EPIPE) std::raise(SIGPIPE);
    _exit(error == EPIPE ? 128 + SIGPIPE : kIncomplete); // also where that is ignored
}

std::size_t outputWidth()
{
    constexpr std::size_t kUsual = 80;
    winsize size = {};
    if (isatty(s_Output) != 1) return 0;
    return ioctl(s_Output, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

int standardOutput()
{
    return s_Output;
}

std::mutex &standardErrorMutex()
{
    static std::mutex mutex;
    return mutex;
}

void complain(std::string_view message)
{
    const std::lock_guard alone(standardErrorMutex());
    writeAll(STDERR_FILENO, fmt::format("{}vornak: {}\n", takeStatusLine(), inOneLine(message)));
}

void setStatusLine(std::string_view text)
{
    const std::lock_guard alone(standardErrorMutex());
    const std::string_view cleared = takeStatusLine();
    writeAll(STDERR_FILENO, text.empty() ? std::string(cleared) : fmt::format("\r{}\033[K", text));
    s_HasStatusLine = !text.empty();
}

std::string aboutFile(const std::string &path, std::string_view why)
{
    return fmt::format("{}: {}", printable(path), why);
}

int complainOf(const std::string &path, std::string_view why)
{
    complain(aboutFile(path, why));
    return kIncomplete;
}

void prepareStandardStreams()
{
    s_OnBrokenPipe = std::signal(SIGPIPE, SIG_IGN);
    for (int opened = 0; opened >= 0 && opened <= STDERR_FILENO;) {
        opened = open("/dev/null", O_RDWR); // NOLINT: stays open across exec, as those three do
        if (opened > STDERR_FILENO) close(opened);
    }
}

void claimStandardOutput()
{
    if (s_Output != STDOUT_FILENO) return;
    const int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (own >= 0 && nowhere >= 0 && dup2(nowhere, STDOUT_FILENO) >= 0) s_Output = own;
    if (nowhere >= 0) close(nowhere);
}

void useColours(ColourUse use)
{
    s_ColourUse = use;
}

const Colours &colours()
{
    static const Colours &chosen = isColoured() ? s_Coloured : s_Plain;
    return chosen;
}

} // namespace vornak::tool

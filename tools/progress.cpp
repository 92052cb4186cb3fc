#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::chrono::milliseconds kInterval{100};

std::size_t terminalWidth()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

bool Progress::isShown()
{
    static const bool shown = isatty(STDERR_FILENO) == 1;
    return shown;
}

void Progress::advance()
{
    ++done_;
    const auto now = std::chrono::steady_clock::now();
    if (!isShown() || now - last_ < kInterval) return;
    last_ = now;
    draw();
    drawn_ = true;
}

void Progress::hide()
{
    if (!drawn_) return;
    fmt::print(stderr, "\r\033[K");
    std::fflush(stderr);
    drawn_ = false;
}

void Progress::draw() const
{
    const std::string count =
        total_ > 0 ? fmt::format(" {}/{} files", done_, total_) : fmt::format("{} files", done_);
    const std::size_t width = terminalWidth();
    std::string bar;
    if (total_ > 0 && width > count.size() + 12) {
        const std::size_t room = std::min<std::size_t>(width - count.size() - 3, 50);
        const std::size_t filled = std::min(done_, total_) * room / total_;
        bar = fmt::format("[{:#<{}}{:{}}]", "", filled, "", room - filled);
    }
    fmt::print(stderr, "\r{}{}\033[K", bar, count);
    std::fflush(stderr);
}

} // namespace vornak::tool

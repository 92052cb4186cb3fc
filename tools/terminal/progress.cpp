#include "tools/terminal/progress.h"

#include "tools/terminal/output.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::size_t kBarWidth = 50;
constexpr std::size_t kNarrowestBar = 9;
constexpr std::chrono::milliseconds kInterval{100};

std::size_t terminalWidth()
{
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

/// "[####      ] ", or nothing where the text leaves too little room.
std::string barOf(double fraction, std::size_t textSize)
{
    const std::size_t width = terminalWidth();
    if (fraction < 0 || width < textSize + 4 + kNarrowestBar) return {};
    const std::size_t room = std::min(width - textSize - 4, kBarWidth);
    const auto filled =
        static_cast<std::size_t>(std::min(fraction, 1.0) * static_cast<double>(room));
    return fmt::format("[{:#<{}}{:{}}] ", "", filled, "", room - filled);
}

} // namespace

bool ProgressLine::isShown()
{
    static const bool shown = isatty(STDERR_FILENO) == 1;
    return shown;
}

void ProgressLine::draw(double fraction, std::string_view text)
{
    if (isShown()) setStatusLine(fmt::format("{}{}", barOf(fraction, text.size()), text));
}

void ProgressLine::hide()
{
    setStatusLine({});
}

void FileProgress::advance()
{
    ++done_;
    const auto now = std::chrono::steady_clock::now();
    if (!ProgressLine::isShown() || now - last_ < kInterval) return;
    last_ = now;
    if (total_ == 0)
        line_.draw(-1, fmt::format("{} files", done_));
    else
        line_.draw(static_cast<double>(done_) / static_cast<double>(total_),
                   fmt::format("{}/{} files", done_, total_));
}

} // namespace vornak::tool

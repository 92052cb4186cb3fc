#include "tools/terminal/progress.h"

#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr std::chrono::milliseconds kInterval{100};

} // namespace

void Progress::advance()
{
    ++done_;
    const auto now = std::chrono::steady_clock::now();
    if (!isShown() || now - last_ < kInterval) return;
    last_ = now;
    if (total_ == 0)
        line_.draw(-1, fmt::format("{} files", done_));
    else
        line_.draw(static_cast<double>(done_) / static_cast<double>(total_),
                   fmt::format("{}/{} files", done_, total_));
}

} // namespace vornak::tool

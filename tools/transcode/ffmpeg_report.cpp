#include "tools/transcode/ffmpeg_report.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

/// The number at the start of a value; 0 for "N/A".
double numberOf(std::string_view value)
{
    return std::max(std::strtod(std::string(value).c_str(), nullptr), 0.0);
}

/// "1:02:03" or "2:03"
std::string clockText(double seconds)
{
    const auto whole = static_cast<long>(std::min(std::ceil(seconds), 359999.0));
    const long hours = whole / 3600, minutes = whole / 60 % 60, rest = whole % 60;
    if (hours > 0) return fmt::format("{}:{:02}:{:02}", hours, minutes, rest);
    return fmt::format("{}:{:02}", minutes, rest);
}

} // namespace

void FfmpegProgress::takeLine(std::string_view line)
{
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos) return;
    const std::string_view key = line.substr(0, sign), value = line.substr(sign + 1);
    if (key == "out_time_us") done_ = numberOf(value) / 1e6;
    if (key == "speed") speed_ = numberOf(value);
    if (key == "progress") line_.draw(fraction(), text());
}

double FfmpegProgress::fraction() const
{
    return duration_ > 0 ? std::min(done_ / duration_, 1.0) : -1;
}

std::string FfmpegProgress::text() const
{
    std::string text =
        duration_ > 0 ? fmt::format("{:3.0f}%", std::floor(fraction() * 100)) : clockText(done_);
    if (speed_ <= 0) return text;
    text += fmt::format("  {:.{}f}x", speed_, speed_ < 10 ? 1 : 0);
    if (duration_ > 0)
        text += fmt::format("  {} left", clockText((duration_ - duration_ * fraction()) / speed_));
    return text;
}

} // namespace vornak::tool

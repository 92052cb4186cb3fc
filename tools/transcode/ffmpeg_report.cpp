#include "tools/transcode/ffmpeg_report.h"

#include "tools/terminal/printable.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <iterator>
#include <optional>

namespace vornak::tool {
namespace {

constexpr std::size_t kMessagesKept = 10;

enum class Meaning { CouldNotWrite, SourceEnded };

/// Words in a message that tell what it means. The first row that fits counts.
struct Words {
    std::string_view words;
    Meaning meaning;
};

// ffmpeg 5.1 returns 0 when the last writes fail, and all versions do when the source ends early.
constexpr Words s_Words[] = {
    {"av_interleaved_write_frame()", Meaning::CouldNotWrite},           // to 6.0
    {"Error submitting a packet to the muxer", Meaning::CouldNotWrite}, // since 6.1
    {"Error muxing", Meaning::CouldNotWrite},                           // since 7.0
    {"Error writing trailer", Meaning::CouldNotWrite},
    {"Error closing file", Meaning::CouldNotWrite},
    {"No space left on device", Meaning::CouldNotWrite}, // which reading never gives
    {"Disk quota exceeded", Meaning::CouldNotWrite},
    {"File too large", Meaning::CouldNotWrite},
    {"Read-only file system", Meaning::CouldNotWrite},
    {"File ended prematurely", Meaning::SourceEnded}, // Matroska
    {"partial file", Meaning::SourceEnded},           // MP4
    {"Error during demuxing", Meaning::SourceEnded},  // since 6.0
    {"Input/output error", Meaning::SourceEnded},     // unless it is the output's
};

std::optional<Meaning> meaningOf(std::string_view line, std::string_view output)
{
    for (const Words &row : s_Words) {
        if (line.find(row.words) == std::string_view::npos) continue;
        const bool isOutputs =
            line.find(output) != std::string_view::npos || line.starts_with("[out#");
        return isOutputs ? Meaning::CouldNotWrite : row.meaning;
    }
    return std::nullopt;
}

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

std::string replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

/// A message without its numbers.
std::string wordingOf(const std::string &line)
{
    std::string wording;
    std::ranges::copy_if(line, std::back_inserter(wording),
                         [](unsigned char c) { return std::isxdigit(c) == 0; });
    return wording;
}

} // namespace

void FfmpegReport::takeProgress(std::string_view line)
{
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos) return;
    const std::string_view key = line.substr(0, sign), value = line.substr(sign + 1);
    if (key == "out_time_us") done_ = numberOf(value) / 1e6;
    if (key == "speed") speed_ = numberOf(value);
    if (key == "progress") line_.draw(fraction(), text());
}

void FfmpegReport::takeMessage(const std::string &line)
{
    const auto meaning = meaningOf(line, url_);
    couldNotWrite_ = couldNotWrite_ || meaning == Meaning::CouldNotWrite;
    sourceEnded_ = sourceEnded_ || meaning == Meaning::SourceEnded;
    if (!meaning) countDamage(line);
    if (messages_.size() == kMessagesKept) messages_.pop_front();
    messages_.push_back(printable(replaced(line, url_, output_)));
}

// A decoder says several things of one place, each in its own words. So words that come again are
// said of another place.
void FfmpegReport::countDamage(const std::string &line)
{
    constexpr std::size_t kMostSaid = 16;
    std::string wording = wordingOf(line);
    const bool again = place_.contains(wording) || place_.size() == kMostSaid;
    if (again) place_.clear();
    if (place_.empty()) ++damagedPlaces_;
    place_.insert(std::move(wording));
}

double FfmpegReport::fraction() const
{
    return duration_ > 0 ? std::min(done_ / duration_, 1.0) : -1;
}

std::string FfmpegReport::text() const
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

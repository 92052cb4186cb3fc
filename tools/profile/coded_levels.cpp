#include "tools/profile/coded_levels.h"

#include "base/ascii_case.h"

#include <charconv>

namespace vornak::tool {
namespace {

/// A number with at most one digit behind a point, in tenths: 41 for "4.1", 40 for "4".
std::optional<int> tenths(const std::string &text)
{
    int whole = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, whole);
    if (error != std::errc() || whole < 0 || whole > 99) return std::nullopt;
    if (stop == end) return whole * 10;
    if (end - stop != 2 || *stop != '.' || stop[1] < '0' || stop[1] > '9') return std::nullopt;
    return whole * 10 + (stop[1] - '0');
}

} // namespace

std::span<const int> knownLevels(int codec)
{
    const LevelScale *scale = levelScaleOf(codec);
    return scale ? scale->levels : std::span<const int>();
}

std::optional<int> codedLevel(int codec, const std::string &level)
{
    if (codec == "h264"_codec && equalIgnoringCase(level, "1b")) return 9;
    const std::optional<int> written = tenths(level);
    if (!written) return std::nullopt;
    const LevelScale *scale = levelScaleOf(codec);
    if (!scale) {
        if (codec == "av1"_codec && *written >= 20 && *written % 10 < 4)
            return codedAv1Level(*written);
        return *written % 10 == 0 ? std::optional(*written / 10) : std::nullopt;
    }
    const int coded = *written * scale->factor / 10;
    const bool isKnown = std::ranges::find(scale->levels, coded) != scale->levels.end();
    return isKnown ? std::optional(coded) : std::nullopt;
}

} // namespace vornak::tool

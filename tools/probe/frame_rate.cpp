#include "tools/probe/frame_rate.h"

#include <algorithm>
#include <cstdlib>

namespace vornak::tool {
namespace {

/// Without those that follow another at once: pictures that are decoded but never shown (VP8, VP9)
/// have its time, or the next that the unit allows.
PictureTimes shownTimes(const PictureTimes &times)
{
    const std::int64_t meanGap = (times.back() - times.front()) / std::ssize(times);
    const std::int64_t atOnce = meanGap < 4 ? 0 : std::max<std::int64_t>(1, meanGap / 10);
    PictureTimes shown{times.front()};
    for (const std::int64_t time : times)
        if (time - shown.back() > atOnce) shown.push_back(time);
    return shown;
}

std::vector<std::int64_t> gapsOf(std::span<const PictureTimes> runs, std::size_t step)
{
    std::vector<std::int64_t> gaps;
    for (const PictureTimes &times : runs)
        for (std::size_t i = step; i < times.size(); i += step)
            gaps.push_back(times[i] - times[i - step]);
    return gaps;
}

std::int64_t medianOf(std::vector<std::int64_t> gaps)
{
    const auto middle = gaps.begin() + std::ssize(gaps) / 2;
    std::ranges::nth_element(gaps, middle);
    return *middle;
}

} // namespace

bool isVariableFrameRate(std::span<const PictureTimes> runs)
{
    constexpr std::size_t kFewestGaps = 7;

    std::vector<PictureTimes> shown;
    for (const PictureTimes &times : runs)
        if (!times.empty()) shown.push_back(shownTimes(times));
    std::vector<std::int64_t> gaps = gapsOf(shown, 1);
    if (gaps.size() < kFewestGaps) return false;
    // rounding to the unit makes gaps differ by one: next to a gap of two that is much, so several
    // pictures are taken together
    const auto step = static_cast<std::size_t>(4 / std::clamp<std::int64_t>(medianOf(gaps), 1, 4));
    if (step > 1) gaps = gapsOf(shown, step);
    if (gaps.size() < kFewestGaps) return false;

    const std::int64_t middle = medianOf(gaps);
    const std::int64_t tolerance = std::max<std::int64_t>(1, middle / 10); // nobody notices a tenth
    const auto odd = std::ranges::count_if(
        gaps, [&](std::int64_t gap) { return std::abs(gap - middle) > tolerance; });
    // a lost picture now and then is no other pace
    return odd >= 2 && static_cast<std::size_t>(odd) * 50 > gaps.size();
}

} // namespace vornak::tool

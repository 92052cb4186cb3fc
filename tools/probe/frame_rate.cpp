#include "tools/probe/frame_rate.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace vornak::tool {

bool isVariableFrameRate(std::span<const std::int64_t> times)
{
    constexpr std::size_t kFewestPictures = 8;
    if (times.size() < kFewestPictures) return false;

    std::vector<std::int64_t> gaps;
    for (std::size_t i = 1; i < times.size(); ++i) gaps.push_back(times[i] - times[i - 1]);
    std::vector<std::int64_t> sorted = gaps;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::ranges::nth_element(sorted, middle);
    // a player doesn't notice a tenth; rounding to the unit makes gaps differ by one, but where
    // the gap is the unit itself there is nothing to round
    const std::int64_t tolerance = *middle < 4 ? 0 : std::max<std::int64_t>(1, *middle / 10);
    const auto odd = std::ranges::count_if(
        gaps, [&](std::int64_t gap) { return std::abs(gap - *middle) > tolerance; });
    // a lost picture now and then is no other pace
    return odd >= 2 && static_cast<std::size_t>(odd) * 50 > gaps.size();
}

} // namespace vornak::tool

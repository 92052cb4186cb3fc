// Levels of codecs as their streams code them.
#pragma once

#include "base/media_ids.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace vornak::tool {

inline constexpr int s_H264Levels[] = {9,  10, 11, 12, 13, 20, 21, 22, 30, 31,
                                       32, 40, 41, 42, 50, 51, 52, 60, 61, 62};
inline constexpr int s_HevcLevels[] = {30, 60, 63, 90, 93, 120, 123, 150, 153, 156, 180, 183, 186};

struct LevelScale {
    int codecId;
    int factor; ///< of the level as people write it, such as 4.1
    std::span<const int> levels;
};
inline constexpr LevelScale s_LevelScales[] = {
    {"h264"_codec, 10, s_H264Levels},
    {"hevc"_codec, 30, s_HevcLevels},
};

/// Null for a codec whose levels have no known order.
constexpr const LevelScale *levelScaleOf(int codecId)
{
    const auto *const row = std::ranges::find(s_LevelScales, codecId, &LevelScale::codecId);
    return row == std::end(s_LevelScales) ? nullptr : row;
}

} // namespace vornak::tool

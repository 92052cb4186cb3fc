// Levels of codecs as their streams code them.
#pragma once

#include "base/media_ids.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>
#include <string>

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

/// The levels of AV1 count four to each whole one from 2.0 on; written in tenths, 51 for 5.1.
constexpr int codedAv1Level(int written)
{
    return (written / 10 - 2) * 4 + written % 10;
}
constexpr int writtenAv1Level(int coded)
{
    constexpr int kLast = 23; // 7.3; what lies above stands for none
    const int level = std::min(coded, kLast);
    return (level / 4 + 2) * 10 + level % 4;
}
static_assert(codedAv1Level(51) == 13 && writtenAv1Level(13) == 51);

struct NamedLevel {
    int coded;
    const char *name;
};
inline constexpr NamedLevel s_Mpeg2Levels[] = {
    {4, "High"}, {6, "High 1440"}, {8, "Main"}, {10, "Low"}};

/// Of a codec whose levels have names, and count backwards.
constexpr std::span<const NamedLevel> levelNamesOf(int codecId)
{
    if (codecId != "mpeg2video"_codec) return {};
    return s_Mpeg2Levels;
}

/// The levels of the codec, rising, as its streams code them; empty: they have no known order.
std::span<const int> knownLevels(int codec);

/// What a stream says for a level such as "4.1"; nothing: the codec has no such level.
std::optional<int> codedLevel(int codec, const std::string &level);

} // namespace vornak::tool

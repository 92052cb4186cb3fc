// Whether the pictures of a video come at a steady pace.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vornak::tool {

/// When pictures are shown that follow each other, rising, in any unit.
using PictureTimes = std::vector<std::int64_t>;

/// @param runs  of one video, from several places
bool isVariableFrameRate(std::span<const PictureTimes> runs);

} // namespace vornak::tool

// Whether the pictures of a video come at a steady pace.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

/// @param times  of the pictures, in any unit, rising
bool isVariableFrameRate(std::span<const std::int64_t> times);

} // namespace vornak::tool

// How many pictures an H.264 stream keeps for reference, and how many its level allows.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

/// Whether the stream's first parameter set asks for more reference frames than fit into the
/// picture buffer of its level. @param extradata  as an MP4 file stores it, or with start codes
bool hasTooManyReferences(std::span<const std::uint8_t> extradata);

} // namespace vornak::tool

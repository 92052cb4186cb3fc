// Whether the pictures of an HEVC stream are fields. A decoder shows them as they come, so
// libavcodec calls every such stream progressive.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

/// By the first parameter set, which says where the pictures are from.
/// @param extradata  as an MP4 file stores it, or with start codes
bool isHevcFromFields(std::span<const std::uint8_t> extradata);

} // namespace vornak::tool

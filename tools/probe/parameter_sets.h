// What the parameter sets of H.264 and HEVC say beyond what libavcodec hands on. Each function
// takes a stream's extradata, as an MP4 file stores it or with start codes.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

/// Whether the first parameter set of an H.264 stream asks for more reference frames than fit
/// into the picture buffer of its level.
bool hasTooManyReferences(std::span<const std::uint8_t> extradata);

/// Whether the pictures of an HEVC stream are fields, by the first parameter set, which says where
/// they are from. A decoder shows them as they come, so libavcodec calls all of them progressive.
bool isHevcFromFields(std::span<const std::uint8_t> extradata);

} // namespace vornak::tool

// What a Matroska file says it is.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vornak::tool {

/// The document type in the header that `start` begins with ("matroska", "webm"), or the empty
/// text.
std::string ebmlDocType(std::span<const std::uint8_t> start);

} // namespace vornak::tool

// The size of what stands before the samples of a PCM file.
#pragma once

#include <cstdint>
#include <string>

namespace vornak::tool {

/// Bytes up to the first sample of a WAV or AIFF file; 0 for anything else.
std::int64_t headerBytesOf(const std::string &path);

} // namespace vornak::tool

// A look at the first packets of a file, for what its headers don't say.
#pragma once

#include <cstdint>
#include <vector>

struct AVFormatContext;

namespace vornak::tool {

struct SampledStream {
    std::int64_t bytes = 0;
    double seconds = 0;              ///< that these bytes last
    std::vector<std::int64_t> times; ///< of the packets, in the order of their presentation
    bool interlaced = false;         ///< an H.264 stream that is, by its first pictures
};

/// One entry a stream. Reads on from where the file stands, some hundred packets at most.
std::vector<SampledStream> samplePackets(AVFormatContext &context);

} // namespace vornak::tool

// What the headers of an MPEG-4 Visual stream say of the features that many players lack.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

struct Mpeg4Features {
    bool interlaced = false;
    bool globalMotion = false;    ///< motion compensation of the whole picture
    bool quarterPixel = false;    ///< motion in quarters of a pixel
    bool packedBitstream = false; ///< two pictures in one packet, as AVI files carry them
};

Mpeg4Features readMpeg4Features(std::span<const std::uint8_t> extradata);

} // namespace vornak::tool

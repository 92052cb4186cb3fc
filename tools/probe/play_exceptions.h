// What players stumble over in a video stream.
#pragma once

#include <string>
#include <vector>

struct AVStream;

namespace vornak::tool {

struct PlayExceptions {
    int bits = 0;
    std::vector<std::string> names; ///< in the order of their bits
};

/// What the packets of a stream say beyond its headers.
struct PictureFacts {
    bool variableFrameRate = false;
    bool interlaced = false; ///< they are fields, whatever the headers say
};

PlayExceptions findPlayExceptions(const AVStream &stream, const PictureFacts &pictures);

} // namespace vornak::tool

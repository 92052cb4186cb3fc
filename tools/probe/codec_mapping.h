// From libavcodec's codecs and profiles to the registry's.
#pragma once

#include <string>

struct AVCodecParameters;

namespace vornak::tool {

struct CodecIdentity {
    int codecId = 0;         ///< kUnknownId: not in the registry
    int profile = 0;         ///< one bit, or 0
    std::string codecName;   ///< libavcodec's for what the registry doesn't know
    std::string profileName; ///< empty: none
};

CodecIdentity identifyCodec(const AVCodecParameters &parameters);

} // namespace vornak::tool

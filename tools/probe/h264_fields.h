// Whether an H.264 stream is interlaced, by its pictures. Containers that say so are not always
// right: a muxer passes on what it was told of the pictures before they were encoded.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

struct AVCodecContext;
struct AVCodecParameters;
struct AVCodecParserContext;

namespace vornak::tool {

class H264Fields {
public:
    explicit H264Fields(const AVCodecParameters &parameters);

    /// Looks at a packet of the stream, as its container stores it.
    void add(std::span<const std::uint8_t> packet);

    bool isInterlaced() const { return interlaced_; }

private:
    struct Free {
        void operator()(AVCodecContext *context) const;
        void operator()(AVCodecParserContext *parser) const;
    };

    std::unique_ptr<AVCodecContext, Free> context_;
    std::unique_ptr<AVCodecParserContext, Free> parser_;
    bool interlaced_ = false;
};

} // namespace vornak::tool

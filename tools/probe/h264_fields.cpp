#include "tools/probe/h264_fields.h"

#include <new>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace vornak::tool {

void H264Fields::Free::operator()(AVCodecContext *context) const
{
    avcodec_free_context(&context);
}

void H264Fields::Free::operator()(AVCodecParserContext *parser) const
{
    av_parser_close(parser);
}

H264Fields::H264Fields(const AVCodecParameters &parameters)
    : context_(avcodec_alloc_context3(nullptr)), parser_(av_parser_init(AV_CODEC_ID_H264))
{
    if (!context_ || !parser_) throw std::bad_alloc();
    if (avcodec_parameters_to_context(context_.get(), &parameters) < 0) throw std::bad_alloc();
    parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
}

void H264Fields::add(std::span<const std::uint8_t> packet)
{
    std::uint8_t *unit = nullptr;
    int size = 0;
    av_parser_parse2(parser_.get(), context_.get(), &unit, &size, packet.data(),
                     static_cast<int>(packet.size()), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
    interlaced_ |=
        parser_->field_order != AV_FIELD_UNKNOWN && parser_->field_order != AV_FIELD_PROGRESSIVE;
}

} // namespace vornak::tool

#include "tools/probe/play_exceptions.h"

#include "include/vornak_host.h"
#include "tools/probe/mpeg4_headers.h"
#include "tools/probe/parameter_sets.h"

#include <span>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dovi_meta.h>
#include <libavutil/pixdesc.h>
}

namespace vornak::tool {
namespace {

struct Facts {
    const AVCodecParameters &parameters;
    const AVPixFmtDescriptor *pixels; ///< null: unknown
    Mpeg4Features mpeg4;
    bool interlacedPictures;
    bool hevcFields;
    bool tooManyReferences;
    bool variableFrameRate;
    bool dolbyVisionAlone;
};

int bitDepth(const Facts &facts)
{
    return facts.pixels ? facts.pixels->comp[0].depth : 8;
}

/// DV has no field order: all of it is fields but for HD's smaller picture.
bool isDvOfFields(const AVCodecParameters &parameters)
{
    return parameters.codec_id == AV_CODEC_ID_DVVIDEO && parameters.height != 720;
}

bool isInterlaced(const Facts &facts)
{
    const AVFieldOrder order = facts.parameters.field_order;
    return (order != AV_FIELD_UNKNOWN && order != AV_FIELD_PROGRESSIVE) || facts.mpeg4.interlaced ||
           facts.interlacedPictures || facts.hevcFields || isDvOfFields(facts.parameters);
}

bool is10Bit(const Facts &facts)
{
    return bitDepth(facts) > 8 && bitDepth(facts) <= 10;
}

bool is12Bit(const Facts &facts)
{
    return bitDepth(facts) > 10;
}

/// Whether a picture has colours of their own (RGB too) with that many times fewer columns.
bool hasChroma(const Facts &facts, int log2Columns)
{
    return facts.pixels && facts.pixels->nb_components >= 3 &&
           facts.pixels->log2_chroma_w == log2Columns && facts.pixels->log2_chroma_h == 0;
}

bool isHdr(const Facts &facts)
{
    return facts.parameters.color_trc == AVCOL_TRC_SMPTE2084 ||
           facts.parameters.color_trc == AVCOL_TRC_ARIB_STD_B67;
}

constexpr struct {
    const char *name; // the registry's
    bool (*applies)(const Facts &);
} s_Exceptions[] = {
    {"interlaced", isInterlaced},
    {"10bit", is10Bit},
    {"12bit", is12Bit},
    {"chroma422", [](const Facts &facts) { return hasChroma(facts, 1); }},
    {"chroma444", [](const Facts &facts) { return hasChroma(facts, 0); }},
    {"too_many_refs", [](const Facts &facts) { return facts.tooManyReferences; }},
    {"packed_bitstream", [](const Facts &facts) { return facts.mpeg4.packedBitstream; }},
    {"vfr", [](const Facts &facts) { return facts.variableFrameRate; }},
    {"hdr", isHdr},
    {"dolby_vision", [](const Facts &facts) { return facts.dolbyVisionAlone; }},
    {"gmc", [](const Facts &facts) { return facts.mpeg4.globalMotion; }},
    {"qpel", [](const Facts &facts) { return facts.mpeg4.quarterPixel; }},
};

std::span<const std::uint8_t> extradataOf(const AVCodecParameters &parameters)
{
    if (!parameters.extradata) return {};
    return {parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)};
}

/// Dolby Vision whose base layer is no picture that other players can show.
bool isDolbyVisionAlone(const AVStream &stream)
{
    std::size_t size = 0;
    const std::uint8_t *data = av_stream_get_side_data(&stream, AV_PKT_DATA_DOVI_CONF, &size);
    if (!data || size < sizeof(AVDOVIDecoderConfigurationRecord)) return false;
    const auto *record = reinterpret_cast<const AVDOVIDecoderConfigurationRecord *>(data);
    return record->dv_bl_signal_compatibility_id == 0;
}

Facts gatherFacts(const AVStream &stream, const PictureFacts &pictures)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    const std::span<const std::uint8_t> extradata = extradataOf(parameters);
    const bool isMpeg4 = parameters.codec_id == AV_CODEC_ID_MPEG4;
    return {
        .parameters = parameters,
        .pixels = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(parameters.format)),
        .mpeg4 = isMpeg4 ? readMpeg4Features(extradata) : Mpeg4Features{},
        .interlacedPictures = pictures.interlaced,
        .hevcFields = parameters.codec_id == AV_CODEC_ID_HEVC && isHevcFromFields(extradata),
        .tooManyReferences =
            parameters.codec_id == AV_CODEC_ID_H264 && hasTooManyReferences(extradata),
        .variableFrameRate = pictures.variableFrameRate,
        .dolbyVisionAlone = isDolbyVisionAlone(stream),
    };
}

} // namespace

PlayExceptions findPlayExceptions(const AVStream &stream, const PictureFacts &pictures)
{
    const Facts facts = gatherFacts(stream, pictures);
    PlayExceptions found;
    for (const auto &row : s_Exceptions) {
        int bit = 0;
        if (!row.applies(facts) || PlayExceptionNameToID(row.name, &bit) != 0) continue;
        found.bits |= bit;
        found.names.emplace_back(row.name);
    }
    return found;
}

} // namespace vornak::tool

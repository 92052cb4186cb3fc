#include "tools/probe/codec_mapping.h"

#include "include/vornak_host.h"
#include "tools/probe/media_info.h"

#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace vornak::tool {
namespace {

// Profiles that libavcodec numbers without giving them a name of their own.
constexpr int kHevcScreenContent = 9;
constexpr int kAacExtendedHe = 41;

constexpr struct {
    AVCodecID codec;
    int profile;
    const char *name; // the registry's
} s_Profiles[] = {
    {AV_CODEC_ID_H264, FF_PROFILE_H264_BASELINE, "baseline"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_CONSTRAINED_BASELINE, "constrained_baseline"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_MAIN, "main"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_EXTENDED, "extended"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH, "high"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_10, "high10"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_10_INTRA, "high10_intra"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_422, "high422"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_422_INTRA, "high422_intra"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_444, "high444"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_444_PREDICTIVE, "high444"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_HIGH_444_INTRA, "high444_intra"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_CAVLC_444, "cavlc444"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_MULTIVIEW_HIGH, "multiview_high"},
    {AV_CODEC_ID_H264, FF_PROFILE_H264_STEREO_HIGH, "stereo_high"},
    {AV_CODEC_ID_HEVC, FF_PROFILE_HEVC_MAIN, "main"},
    {AV_CODEC_ID_HEVC, FF_PROFILE_HEVC_MAIN_10, "main10"},
    {AV_CODEC_ID_HEVC, FF_PROFILE_HEVC_MAIN_STILL_PICTURE, "main_still_picture"},
    {AV_CODEC_ID_HEVC, FF_PROFILE_HEVC_REXT, "rext"},
    {AV_CODEC_ID_HEVC, kHevcScreenContent, "scc"},
    {AV_CODEC_ID_VVC, FF_PROFILE_VVC_MAIN_10, "main10"},
    {AV_CODEC_ID_VVC, FF_PROFILE_VVC_MAIN_10_444, "main10_444"},
    {AV_CODEC_ID_AV1, FF_PROFILE_AV1_MAIN, "main"},
    {AV_CODEC_ID_AV1, FF_PROFILE_AV1_HIGH, "high"},
    {AV_CODEC_ID_AV1, FF_PROFILE_AV1_PROFESSIONAL, "professional"},
    {AV_CODEC_ID_VP8, 0, "profile0"},
    {AV_CODEC_ID_VP8, 1, "profile1"},
    {AV_CODEC_ID_VP8, 2, "profile2"},
    {AV_CODEC_ID_VP8, 3, "profile3"},
    {AV_CODEC_ID_VP9, FF_PROFILE_VP9_0, "profile0"},
    {AV_CODEC_ID_VP9, FF_PROFILE_VP9_1, "profile1"},
    {AV_CODEC_ID_VP9, FF_PROFILE_VP9_2, "profile2"},
    {AV_CODEC_ID_VP9, FF_PROFILE_VP9_3, "profile3"},
    {AV_CODEC_ID_MPEG2VIDEO, FF_PROFILE_MPEG2_SIMPLE, "simple"},
    {AV_CODEC_ID_MPEG2VIDEO, FF_PROFILE_MPEG2_MAIN, "main"},
    {AV_CODEC_ID_MPEG2VIDEO, FF_PROFILE_MPEG2_SNR_SCALABLE, "snr_scalable"},
    {AV_CODEC_ID_MPEG2VIDEO, FF_PROFILE_MPEG2_SS, "spatially_scalable"},
    {AV_CODEC_ID_MPEG2VIDEO, FF_PROFILE_MPEG2_HIGH, "high"},
    {AV_CODEC_ID_MPEG2VIDEO, FF_PROFILE_MPEG2_422, "422"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_SIMPLE, "simple"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_SIMPLE_SCALABLE, "simple_scalable"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_CORE, "core"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_MAIN, "main"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_N_BIT, "n_bit"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_SCALABLE_TEXTURE, "scalable_texture"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_SIMPLE_FACE_ANIMATION, "simple_face_animation"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_BASIC_ANIMATED_TEXTURE, "basic_animated_texture"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_HYBRID, "hybrid"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_ADVANCED_REAL_TIME, "advanced_real_time"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_CORE_SCALABLE, "core_scalable"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_ADVANCED_CODING, "advanced_coding"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_ADVANCED_CORE, "advanced_core"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_ADVANCED_SCALABLE_TEXTURE, "advanced_scalable_texture"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_SIMPLE_STUDIO, "simple_studio"},
    {AV_CODEC_ID_MPEG4, FF_PROFILE_MPEG4_ADVANCED_SIMPLE, "advanced_simple"},
    {AV_CODEC_ID_VC1, FF_PROFILE_VC1_SIMPLE, "simple"},
    {AV_CODEC_ID_VC1, FF_PROFILE_VC1_MAIN, "main"},
    {AV_CODEC_ID_VC1, FF_PROFILE_VC1_COMPLEX, "complex"},
    {AV_CODEC_ID_VC1, FF_PROFILE_VC1_ADVANCED, "advanced"},
    {AV_CODEC_ID_WMV3, FF_PROFILE_VC1_SIMPLE, "simple"},
    {AV_CODEC_ID_WMV3, FF_PROFILE_VC1_MAIN, "main"},
    {AV_CODEC_ID_WMV3, FF_PROFILE_VC1_COMPLEX, "complex"},
    {AV_CODEC_ID_WMV3, FF_PROFILE_VC1_ADVANCED, "advanced"},
    {AV_CODEC_ID_MJPEG, FF_PROFILE_MJPEG_HUFFMAN_BASELINE_DCT, "baseline"},
    {AV_CODEC_ID_MJPEG, FF_PROFILE_MJPEG_HUFFMAN_EXTENDED_SEQUENTIAL_DCT, "sequential"},
    {AV_CODEC_ID_MJPEG, FF_PROFILE_MJPEG_HUFFMAN_PROGRESSIVE_DCT, "progressive"},
    {AV_CODEC_ID_MJPEG, FF_PROFILE_MJPEG_HUFFMAN_LOSSLESS, "lossless"},
    {AV_CODEC_ID_JPEG2000, FF_PROFILE_JPEG2000_CSTREAM_RESTRICTION_0, "codestream0"},
    {AV_CODEC_ID_JPEG2000, FF_PROFILE_JPEG2000_CSTREAM_RESTRICTION_1, "codestream1"},
    {AV_CODEC_ID_JPEG2000, FF_PROFILE_JPEG2000_CSTREAM_NO_RESTRICTION, "codestream_unrestricted"},
    {AV_CODEC_ID_JPEG2000, FF_PROFILE_JPEG2000_DCINEMA_2K, "cinema2k"},
    {AV_CODEC_ID_JPEG2000, FF_PROFILE_JPEG2000_DCINEMA_4K, "cinema4k"},
    {AV_CODEC_ID_PRORES, FF_PROFILE_PRORES_PROXY, "proxy"},
    {AV_CODEC_ID_PRORES, FF_PROFILE_PRORES_LT, "lt"},
    {AV_CODEC_ID_PRORES, FF_PROFILE_PRORES_STANDARD, "standard"},
    {AV_CODEC_ID_PRORES, FF_PROFILE_PRORES_HQ, "hq"},
    {AV_CODEC_ID_PRORES, FF_PROFILE_PRORES_4444, "4444"},
    {AV_CODEC_ID_PRORES, FF_PROFILE_PRORES_XQ, "4444xq"},
    {AV_CODEC_ID_DNXHD, FF_PROFILE_DNXHD, "dnxhd"},
    {AV_CODEC_ID_DNXHD, FF_PROFILE_DNXHR_LB, "dnxhr_lb"},
    {AV_CODEC_ID_DNXHD, FF_PROFILE_DNXHR_SQ, "dnxhr_sq"},
    {AV_CODEC_ID_DNXHD, FF_PROFILE_DNXHR_HQ, "dnxhr_hq"},
    {AV_CODEC_ID_DNXHD, FF_PROFILE_DNXHR_HQX, "dnxhr_hqx"},
    {AV_CODEC_ID_DNXHD, FF_PROFILE_DNXHR_444, "dnxhr_444"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_MAIN, "main"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_LOW, "lc"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_SSR, "ssr"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_LTP, "ltp"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_HE, "he"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_HE_V2, "he_v2"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_LD, "ld"},
    {AV_CODEC_ID_AAC, FF_PROFILE_AAC_ELD, "eld"},
    {AV_CODEC_ID_AAC, FF_PROFILE_MPEG2_AAC_LOW, "mpeg2_lc"},
    {AV_CODEC_ID_AAC, FF_PROFILE_MPEG2_AAC_HE, "mpeg2_he"},
    {AV_CODEC_ID_AAC, kAacExtendedHe, "xhe"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_MAIN, "main"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_LOW, "lc"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_LTP, "ltp"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_HE, "he"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_HE_V2, "he_v2"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_LD, "ld"},
    {AV_CODEC_ID_AAC_LATM, FF_PROFILE_AAC_ELD, "eld"},
    {AV_CODEC_ID_AAC_LATM, kAacExtendedHe, "xhe"},
    {AV_CODEC_ID_DTS, FF_PROFILE_DTS, "dts"},
    {AV_CODEC_ID_DTS, FF_PROFILE_DTS_ES, "dts_es"},
    {AV_CODEC_ID_DTS, FF_PROFILE_DTS_96_24, "dts_96_24"},
    {AV_CODEC_ID_DTS, FF_PROFILE_DTS_HD_HRA, "dts_hd_hra"},
    {AV_CODEC_ID_DTS, FF_PROFILE_DTS_HD_MA, "dts_hd_ma"},
    {AV_CODEC_ID_DTS, FF_PROFILE_DTS_EXPRESS, "dts_express"},
};

/// libavcodec's name, except that players tell DTS-HD from the DTS that it extends.
const char *nameOf(const AVCodecParameters &parameters)
{
    const bool isDtsHd =
        parameters.codec_id == AV_CODEC_ID_DTS && (parameters.profile == FF_PROFILE_DTS_HD_HRA ||
                                                   parameters.profile == FF_PROFILE_DTS_HD_MA ||
                                                   parameters.profile == FF_PROFILE_DTS_EXPRESS);
    if (isDtsHd) return "dtshd";
    return parameters.codec_id == AV_CODEC_ID_NONE ? "unknown"
                                                   : avcodec_get_name(parameters.codec_id);
}

/// The registry's id of the codec that goes by exactly this name. Aliases don't count: "avc" is
/// an audio codec to libavcodec.
int findCodec(const char *name)
{
    int id = 0;
    char text[VORNAK_NAME_SIZE] = {};
    if (CodecNameToID(name, &id) != 0 || CodecIDToName(text, id) != 0) return kUnknownId;
    return std::string_view(text).substr(VORNAK_CODEC_PREFIX) == name ? id : kUnknownId;
}

const char *findProfileName(const AVCodecParameters &parameters)
{
    for (const auto &row : s_Profiles)
        if (row.codec == parameters.codec_id && row.profile == parameters.profile) return row.name;
    return nullptr;
}

} // namespace

CodecIdentity identifyCodec(const AVCodecParameters &parameters)
{
    const char *name = nameOf(parameters);
    CodecIdentity identity{findCodec(name), 0, name, {}};
    const char *profile = findProfileName(parameters);
    if (profile && ProfileNameToID(profile, &identity.profile) == 0) identity.profileName = profile;
    return identity;
}

} // namespace vornak::tool

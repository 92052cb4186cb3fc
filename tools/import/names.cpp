#include "tools/import/names.h"

#include "base/media_ids.h"
#include "tools/profile/codec_list.h"
#include "tools/profile/id_names.h"

namespace vornak::tool {
namespace {

std::vector<int> listOf(const CodecList &codecs)
{
    return {codecs.begin(), codecs.end()};
}

std::vector<int> generalMp4()
{
    return {"mp4/isom"_container, "mp4/mp42"_container, "mp4/mp41"_container};
}

} // namespace

std::vector<int> commonPictures()
{
    return listOf("h264|hevc|mpeg2video|mpeg4|vp9|av1|vp8|vc1|wmv3|wmv2|wmv1|mpeg1video|"
                  "msmpeg4v3|msmpeg4v2|msmpeg4v1|mjpeg|h263|h261|flv1|theora|vp6|vp6f|vp6a|"
                  "vvc|rv40|rv30|rv20|rv10|dvvideo|prores|dnxhd|cinepak|svq3|svq1|indeo5|"
                  "huffyuv|ffv1|cavs|rawvideo"_codecs);
}

std::vector<int> commonSounds()
{
    return listOf("aac|ac3|eac3|mp3|mp2|mp1|dts|dtshd|truehd|mlp|flac|alac|opus|vorbis|"
                  "aac_latm|pcm_s16le|pcm_s16be|pcm_s24le|pcm_s24be|pcm_s32le|pcm_u8|"
                  "pcm_f32le|pcm_mulaw|pcm_alaw|pcm_dvd|pcm_bluray|wmav2|wmav1|wmapro|"
                  "wmalossless|wmavoice|amr_nb|amr_wb|speex|ape|wavpack|tta|musepack7|"
                  "musepack8|cook|sipr|ra_144|ra_288|adpcm_ms|adpcm_ima_wav|adpcm_swf|ac4|"
                  "nellymoser|gsm_ms|dsd_lsbf|dsd_msbf|dsd_lsbf_planar|dsd_msbf_planar"_codecs);
}

std::vector<int> allContainers()
{
    std::vector<int> formats;
    for (const RegistryName &row : s_ContainerNames) {
        if (row.id == 0) continue;
        if (row.id != "mp4"_container) formats.push_back(row.id);
        for (const SubtypeName &subtype : s_SubtypeNames)
            if (subtype.containerId == row.id)
                formats.push_back(formatIdOf(row.id, subtype.number));
    }
    return formats;
}

std::vector<int> containersNamed(const std::string &name)
{
    const int format = containerNamed(name == "webma" ? "webm" : name);
    if (format <= 0) return {};
    return format == "mp4"_container ? generalMp4() : std::vector{format};
}

} // namespace vornak::tool

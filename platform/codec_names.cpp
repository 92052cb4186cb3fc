// Codecs: those of base/media_ids.h, and what else people call them.
#include "platform/registry_names.h"

#include "base/fixed_text.h"
#include "platform/name_index.h"

namespace vornak {
namespace {

constexpr auto s_CodecAliases = std::to_array<Alias>({
    {"*", "any"},
    // video
    {"mpeg1", "mpeg1video"},
    {"mpg1", "mpeg1video"},
    {"mpeg2", "mpeg2video"},
    {"mpg2", "mpeg2video"},
    {"h262", "mpeg2video"},
    {"jpeg", "mjpeg"},
    {"jpg", "mjpeg"},
    {"motionjpeg", "mjpeg"},
    {"mpeg4video", "mpeg4"},
    {"mpeg4part2", "mpeg4"},
    {"mpeg4visual", "mpeg4"},
    {"mp4v", "mpeg4"},
    {"divx", "mpeg4"},
    {"xvid", "mpeg4"},
    {"msmpeg4", "msmpeg4v3"},
    {"div3", "msmpeg4v3"},
    {"wmv7", "wmv1"},
    {"wmv8", "wmv2"},
    {"wmv9", "wmv3"},
    {"wvc1", "vc1"},
    {"flv", "flv1"},
    {"dv", "dvvideo"},
    {"avc", "h264"},
    {"avc1", "h264"},
    {"x264", "h264"},
    {"mpeg4avc", "h264"},
    {"mpeg4part10", "h264"},
    {"h265", "hevc"},
    {"x265", "hevc"},
    {"hvc1", "hevc"},
    {"hev1", "hevc"},
    {"h266", "vvc"},
    {"vp09", "vp9"},
    {"av01", "av1"},
    {"raw", "rawvideo"},
    {"cineform", "cfhd"},
    // audio
    {"pcm", "pcm_s16le"},
    {"lpcm", "pcm_s16le"},
    {"l16", "pcm_s16be"},
    {"l24", "pcm_s24be"},
    {"mulaw", "pcm_mulaw"},
    {"ulaw", "pcm_mulaw"},
    {"alaw", "pcm_alaw"},
    {"pcm_s302m", "s302m"},
    {"g722", "adpcm_g722"},
    {"g726", "adpcm_g726"},
    {"amr", "amr_nb"},
    {"real_144", "ra_144"},
    {"real_288", "ra_288"},
    {"mpeg1layer1", "mp1"},
    {"mpeg1layer2", "mp2"},
    {"mpeg1layer3", "mp3"},
    {"mpa", "mp2"},
    {"mp4a", "aac"},
    {"loas", "aac_latm"},
    {"latm", "aac_latm"},
    {"a52", "ac3"},
    {"dolbydigital", "ac3"},
    {"ec3", "eac3"},
    {"ddp", "eac3"},
    {"dolbydigitalplus", "eac3"},
    {"dca", "dts"},
    {"dolbytruehd", "truehd"},
    {"wma1", "wmav1"},
    {"wma2", "wmav2"},
    {"wma", "wmav2"},
    {"wma9pro", "wmapro"},
    {"mpc7", "musepack7"},
    {"mpc8", "musepack8"},
    {"mpc", "musepack8"},
    {"wv", "wavpack"},
    {"dsd", "dsd_lsbf_planar"},
});

constexpr NameIndex s_CodecIndex(s_CodecNames, s_CodecAliases);

constexpr std::string_view kCodecPrefix = "CODEC_ID_";
static_assert(kCodecPrefix.size() == VORNAK_CODEC_PREFIX);

} // namespace
} // namespace vornak

int CodecNameToID(const char *name, int *id)
{
    return vornak::findId(vornak::s_CodecIndex, name, id);
}

int CodecIDToName(char *name, int id)
{
    if (!name) return 1;
    const auto *row =
        std::ranges::lower_bound(vornak::s_CodecNames, id, {}, &vornak::RegistryName::id);
    if (row == vornak::s_CodecNames.end() || row->id != id) return 1;
    vornak::FixedText text(name, VORNAK_NAME_SIZE);
    return text.append(vornak::kCodecPrefix, row->name) ? 0 : 1;
}

#include "tools/import/names.h"

#include "base/media_ids.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "tools/profile/coded_levels.h"

#include <algorithm>
#include <charconv>

namespace vornak::tool {
namespace {

int bitsNamed(std::string_view names, int (*lookup)(const char *name, int *bit))
{
    int bits = 0;
    for (const std::string &name : splitList(names, '|')) {
        int bit = 0;
        if (lookup(name.c_str(), &bit) == 0) bits |= bit;
    }
    return bits;
}

std::vector<int> listOf(const CodecList &codecs)
{
    return {codecs.begin(), codecs.end()};
}

std::vector<int> generalMp4()
{
    return {"mp4/isom"_container, "mp4/mp42"_container, "mp4/mp41"_container};
}

/// A number with at most one digit behind a point, in tenths: 41 for "4.1", 40 for "4".
std::optional<int> tenths(const std::string &text)
{
    int whole = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, whole);
    if (error != std::errc() || whole < 0 || whole > 99) return std::nullopt;
    if (stop == end) return whole * 10;
    if (end - stop != 2 || *stop != '.' || stop[1] < '0' || stop[1] > '9') return std::nullopt;
    return whole * 10 + (stop[1] - '0');
}

} // namespace

int codecNamed(const std::string &name)
{
    int id = 0;
    return CodecNameToID(name.c_str(), &id) == 0 ? id : -1;
}

bool isPicture(int codec)
{
    return codec > 0 && codec < kFirstAudioCodec;
}

int containerNamed(const std::string &name)
{
    const std::size_t slash = name.find('/');
    const std::string subtype = slash == std::string::npos ? "" : name.substr(slash + 1);
    int id = 0;
    return ContainerFormatNameToID(name.substr(0, slash).c_str(), subtype.c_str(), &id) == 0 ? id
                                                                                             : -1;
}

int profilesNamed(std::string_view names)
{
    return bitsNamed(names, ProfileNameToID);
}

int playExceptionsNamed(std::string_view names)
{
    return bitsNamed(names, PlayExceptionNameToID);
}

std::vector<std::string> splitList(std::string_view list, char separator)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    std::vector<std::string> pieces;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(separator), list.size());
        std::string_view piece = list.substr(0, end);
        list.remove_prefix(std::min(end + 1, list.size()));
        piece.remove_prefix(std::min(piece.find_first_not_of(kBlanks), piece.size()));
        piece = piece.substr(0, piece.find_last_not_of(kBlanks) + 1);
        if (!piece.empty()) pieces.emplace_back(piece);
    }
    return pieces;
}

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    for (char &c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

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

std::span<const int> knownLevels(int codec)
{
    const LevelScale *scale = levelScaleOf(codec);
    return scale ? scale->levels : std::span<const int>();
}

std::optional<int> codedLevel(int codec, const std::string &level)
{
    if (codec == "h264"_codec && lowerCase(level) == "1b") return 9;
    const std::optional<int> written = tenths(level);
    if (!written) return std::nullopt;
    const LevelScale *scale = levelScaleOf(codec);
    if (!scale) {
        // AV1 counts from 2.0, four to each whole level
        if (codec == "av1"_codec && *written >= 20 && *written % 10 < 4)
            return (*written / 10 - 2) * 4 + *written % 10;
        return *written % 10 == 0 ? std::optional(*written / 10) : std::nullopt;
    }
    const int coded = *written * scale->factor / 10;
    const bool isKnown = std::ranges::find(scale->levels, coded) != scale->levels.end();
    return isKnown ? std::optional(coded) : std::nullopt;
}

} // namespace vornak::tool

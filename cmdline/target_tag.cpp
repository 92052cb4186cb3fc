#include "cmdline/target_tag.h"

#include "include/vornak_host.h"

#include "base/fixed_text.h"
#include "base/media_ids.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace vornak {
namespace {

/// A cleared buffer for the registry, and what it wrote.
struct RegistryText {
    char buffer[VORNAK_NAME_SIZE] = {};

    std::string_view after(std::size_t prefix) const
    {
        const std::size_t length = strnlen(buffer, sizeof buffer);
        const std::size_t skipped = std::min(prefix, length);
        return {buffer + skipped, length - skipped};
    }
};

// A tag can't outgrow its buffer: the longest is five names, each less than a registry's buffer,
// and as many marks between them. So nothing is ever cut.
static_assert(5 * (VORNAK_NAME_SIZE + 1) < VORNAK_TAG_SIZE);

constexpr struct {
    int formatId;
    const char *text;
} s_Mp4Brands[] = {
    {"mp4/m4a"_container, "M4A"},   {"mp4/m4v"_container, "M4V"},   {"mp4/mp41"_container, "MP4"},
    {"mp4/mov"_container, "MOV"},   {"mp4/msnv"_container, "MSNV"}, {"mp4/isom"_container, "ISOM"},
    {"mp4/mjp2"_container, "MJP2"}, {"mp4/3g2"_container, "3G2"},   {"mp4/3gp"_container, "3GP"},
    {"mp4/mp42"_container, "MP4"},  {"mp4/qt"_container, "MOV"},
};

/// Begins the tag with a codec's name. Until the registry has given it, the caller's buffer stays
/// as it was.
std::optional<FixedText> beginTag(char *buffer, int codecId)
{
    RegistryText codec;
    if (CodecIDToName(codec.buffer, codecId) != 0) return std::nullopt;
    FixedText tag(buffer, VORNAK_TAG_SIZE);
    tag.appendCut(codec.after(VORNAK_CODEC_PREFIX));
    return tag;
}

[[nodiscard]] bool appendCodec(FixedText &tag, int codecId)
{
    RegistryText codec;
    if (CodecIDToName(codec.buffer, codecId) != 0) return false;
    tag.appendCut("_", codec.after(VORNAK_CODEC_PREFIX));
    return true;
}

[[nodiscard]] bool appendProfile(FixedText &tag, int profileId, int codecId)
{
    if (profileId <= 0) {
        tag.appendCut("_@");
        return true;
    }
    RegistryText profile;
    if (ProfileIDToName(profile.buffer, profileId, codecId) != 0) return false;
    tag.appendCut("_", profile.after(0));
    return true;
}

/// @param subtypeText  gives the text for the container's subtype, from what the registry wrote
template <class SubtypeText>
[[nodiscard]] bool appendContainer(FixedText &tag, int formatId, std::string_view subtypeMark,
                                   SubtypeText subtypeText)
{
    RegistryText container, subtype;
    if (ContainerFormatIDToName(container.buffer, subtype.buffer, formatId) != 0) return false;
    tag.appendCut(".", container.after(VORNAK_CONTAINER_PREFIX));
    if (subtype.buffer[0] == '\0') return true;
    tag.appendCut(subtypeMark, subtypeText(subtype.after(VORNAK_SUBTYPE_PREFIX)));
    return true;
}

/// The short name of an MP4 brand, or `name` for a subtype that is none.
std::string_view brandText(int formatId, std::string_view name)
{
    for (const auto &brand : s_Mp4Brands)
        if (subtypePart(brand.formatId) == subtypePart(formatId)) return brand.text;
    return name;
}

} // namespace

bool writeMusicTag(const TRANSCODE_AUDIO_MAPPING_ST &rule, int formatId, char *buffer)
{
    std::optional<FixedText> tag = beginTag(buffer, rule.aCodecId);
    return tag && appendProfile(*tag, rule.aProfileId, rule.aCodecId) &&
           appendContainer(*tag, formatId, "-", [](std::string_view name) { return name; });
}

bool writeVideoTag(const TRANSCODE_VIDEO_MAPPING_ST &video, const TRANSCODE_AUDIO_MAPPING_ST &audio,
                   int formatId, char *buffer)
{
    std::optional<FixedText> tag = beginTag(buffer, video.vCodecId);
    return tag && appendProfile(*tag, video.vProfileId, video.vCodecId) &&
           appendCodec(*tag, audio.aCodecId) &&
           appendProfile(*tag, audio.aProfileId, audio.aCodecId) &&
           appendContainer(*tag, formatId, ".",
                           [&](std::string_view name) { return brandText(formatId, name); });
}

} // namespace vornak

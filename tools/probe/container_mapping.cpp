#include "tools/probe/container_mapping.h"

#include "base/media_ids.h"
#include "tools/probe/media_file.h"
#include "tools/probe/media_info.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <optional>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

namespace vornak::tool {
namespace {

// By how a file's major brand begins; the longer one before the shorter.
constexpr struct {
    const char *brand;
    int formatId;
} s_Brands[] = {
    {"M4A", "mp4/m4a"_container},   {"M4B", "mp4/m4a"_container}, // audio books
    {"M4P", "mp4/m4a"_container},                                 // protected music
    {"F4A", "mp4/m4a"_container},   {"F4B", "mp4/m4a"_container},   {"M4V", "mp4/m4v"_container},
    {"mp41", "mp4/mp41"_container}, {"mp42", "mp4/mp42"_container}, {"MSNV", "mp4/msnv"_container},
    {"mjp2", "mp4/mjp2"_container}, {"3g2", "mp4/3g2"_container},   {"KDDI", "mp4/3g2"_container},
    {"3g", "mp4/3gp"_container}, // 3gp4 to 3gp9, 3gr6, 3gs7, ...
    {"qt", "mp4/qt"_container},
};

/// The major brand; empty: none.
std::string_view brandOf(const AVFormatContext &context)
{
    const AVDictionaryEntry *brand = av_dict_get(context.metadata, "major_brand", nullptr, 0);
    return brand ? brand->value : "";
}

/// Brands that have no name of their own are further forms of "isom": iso2, avc1, dash, ...
/// A file without a brand is QuickTime's, from before there were any.
int formOfMp4(const AVFormatContext &context)
{
    const std::string_view brand = brandOf(context);
    if (brand.empty()) return "mp4/qt"_container;
    for (const auto &row : s_Brands)
        if (brand.starts_with(row.brand)) return row.formatId;
    return "mp4/isom"_container;
}

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint64_t kHeaderId = 0x1A45DFA3;
constexpr std::uint64_t kDocTypeId = 0x4282;

/// Takes a number off the front: the leading zeros of its first byte say how many bytes follow.
/// The one behind those zeros belongs to an id, but not to a size.
std::optional<std::uint64_t> takeNumber(Bytes &bytes, bool isSize)
{
    if (bytes.empty() || bytes[0] == 0) return std::nullopt;
    const auto length = static_cast<std::size_t>(std::countl_zero(bytes[0])) + 1;
    if (bytes.size() < length) return std::nullopt;
    std::uint64_t value = isSize ? bytes[0] & (0xFFU >> length) : bytes[0];
    for (std::size_t i = 1; i < length; ++i) value = value << 8 | bytes[i];
    bytes = bytes.subspan(length);
    return value;
}

struct Element {
    std::uint64_t id;
    Bytes content; ///< cut at the end of what there is
};

std::optional<Element> takeElement(Bytes &bytes)
{
    const auto id = takeNumber(bytes, false);
    if (!id) return std::nullopt;
    const auto size = takeNumber(bytes, true);
    if (!size) return std::nullopt;
    const Bytes content = bytes.first(std::min<std::uint64_t>(*size, bytes.size()));
    bytes = bytes.subspan(content.size());
    return Element{*id, content};
}

bool isWebm(const MediaFile &file)
{
    std::array<std::uint8_t, 256> start{};
    return ebmlDocType(file.readStart(start)) == "webm";
}

bool holds(const AVFormatContext &context, AVCodecID codec)
{
    return std::any_of(
        context.streams, context.streams + context.nb_streams,
        [codec](const AVStream *stream) { return stream->codecpar->codec_id == codec; });
}

/// By the first pack: MPEG-1 writes 0010 behind its start code, MPEG-2 01.
bool isMpeg1System(const MediaFile &file)
{
    constexpr std::array<std::uint8_t, 4> kPack{0, 0, 1, 0xBA};
    std::array<std::uint8_t, 4096> buffer{};
    const std::span<const std::uint8_t> start = file.readStart(buffer);
    const auto pack = std::search(start.begin(), start.end(), kPack.begin(), kPack.end());
    return start.end() - pack > 4 && (pack[4] & 0xF0) == 0x20;
}

int programStream(const MediaFile &file)
{
    const AVFormatContext &context = *file.context();
    if (holds(context, AV_CODEC_ID_DVD_NAV)) return "mpegps_dvd"_container;
    // some muxers write MPEG-1 packs around MPEG-2 video
    if (isMpeg1System(file) && !holds(context, AV_CODEC_ID_MPEG2VIDEO))
        return "mpegps_mpeg1"_container;
    return "mpegps"_container;
}

int transportStream(const AVFormatContext &context)
{
    std::int64_t packetSize = 0;
    av_opt_get_int(context.priv_data, "ts_packetsize", 0, &packetSize);
    if (packetSize == 192) return "mpegts_m2ts"_container;
    return packetSize == 204 ? "mpegts_204"_container : "mpegts"_container;
}

/// The demuxer of "dff" reads other files of its kind too.
bool holdsDsd(const AVFormatContext &context)
{
    return holds(context, AV_CODEC_ID_DSD_MSBF) || holds(context, AV_CODEC_ID_DST);
}

/// libavformat's name, which for pictures one after the other is that of a pipe.
std::string nameOfUnknown(const AVFormatContext &context)
{
    const std::string_view format = context.iformat->name;
    return format == "jpeg_pipe" ? "mjpeg" : std::string(format);
}

int formatIdOf(const MediaFile &file)
{
    const AVFormatContext &context = *file.context();
    const int container = containerReadBy(context.iformat->name).value_or(kUnknownId);
    switch (container) {
    case "mp4"_container:
        return formOfMp4(context);
    case "matroska"_container:
        return isWebm(file) ? "matroska/webm"_container : container;
    case "mpegps"_container:
        return programStream(file);
    case "mpegts"_container:
        return transportStream(context);
    case "dff"_container:
        return holdsDsd(context) ? container : kUnknownId;
    default:
        return container;
    }
}

} // namespace

std::string ebmlDocType(Bytes start)
{
    const std::optional<Element> header = takeElement(start);
    if (!header || header->id != kHeaderId) return {};
    Bytes rest = header->content;
    while (const std::optional<Element> element = takeElement(rest))
        if (element->id == kDocTypeId)
            return {element->content.begin(), std::ranges::find(element->content, 0)};
    return {};
}

ContainerIdentity identifyContainer(const MediaFile &file)
{
    const int id = formatIdOf(file);
    return {id, id == kUnknownId ? nameOfUnknown(*file.context()) : containerText(id)};
}

int fewestPicturesOfFilm(const AVFormatContext &context)
{
    constexpr int kMostInPhoto = 4; // cameras put some into one: for both eyes, for bright screens
    constexpr int kNever = std::numeric_limits<int>::max();

    const std::string_view format = context.iformat->name;
    if (format == "gif" || format == "apng") return 2;
    if (format == "jpeg_pipe") return kMostInPhoto + 1;
    return format.ends_with("_pipe") || format == "image2" || format == "ico" ? kNever : 0;
}

bool hasPhotoBrand(const MediaFile &file)
{
    // of sequences others: avis, msf1, ...
    constexpr std::string_view brands[] = {"avci", "avif", "crx ", "heic", "heim",
                                           "heis", "heix", "mif1", "mif2"};
    std::array<std::uint8_t, 12> start{};
    if (file.readStart(start).size() < start.size()) return false;
    const std::string_view box(reinterpret_cast<const char *>(start.data()), start.size());
    return box.substr(4, 4) == "ftyp" &&
           std::ranges::find(brands, box.substr(8)) != std::end(brands);
}

} // namespace vornak::tool

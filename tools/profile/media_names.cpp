#include "tools/profile/media_names.h"

#include "base/media_ids.h"
#include "base/rule_tables.h"

#include <algorithm>

namespace vornak::tool {
namespace {

struct MediaNames {
    int formatId;
    std::string_view extension;
    std::string_view demuxers, muxers; ///< separated by "|"
};

constexpr MediaNames s_MediaNames[] = {
    // container, extension, demuxers, muxers
    {"mp3"_container, "mp3", "mp3", "mp2|mp3"},
    {"wav"_container, "wav", "wav", "wav"},
    {"flac"_container, "flac", "flac", "flac"},
    {"ape"_container, "ape", "ape", ""},
    {"ogg"_container, "ogg", "ogg", "oga|ogg|ogv|opus|spx"},
    {"ac3"_container, "ac3", "ac3", "ac3"},
    {"asf"_container, "asf", "asf|asf_o", "asf|asf_stream"},
    {"mp4"_container, "mp4", "mov,mp4,m4a,3gp,3g2,mj2", ""},
    {"mp4/m4a"_container, "m4a", "", "ipod"},
    {"mp4/m4v"_container, "m4v", "", "ipod"},
    {"mp4/mp41"_container, "mp4", "", ""},
    {"mp4/mov"_container, "mov", "", ""},
    {"mp4/msnv"_container, "mp4", "", "psp"},
    {"mp4/isom"_container, "mp4", "", "mp4"},
    {"mp4/mjp2"_container, "mj2", "", ""},
    {"mp4/3g2"_container, "3g2", "", "3g2"},
    {"mp4/3gp"_container, "3gp", "", "3gp"},
    {"mp4/mp42"_container, "mp4", "", ""},
    {"mp4/qt"_container, "mov", "", "mov"},
    {"avi"_container, "avi", "avi", "avi"},
    {"mpegps"_container, "mpg", "mpeg", "dvd|mpeg|svcd|vcd|vob"},
    {"mpegts"_container, "ts", "mpegts", "mpegts"},
    // the last is the appliance's name for Matroska
    {"matroska"_container, "mkv", "matroska,webm", "matroska|mkvtimestamp_v2"},
    {"matroska/webm"_container, "webm", "", "webm"},
    {"flv"_container, "flv", "flv|live_flv", "flv"},
    {"aiff"_container, "aiff", "aiff", "aiff"},
    {"au"_container, "au", "au", "au"},
    {"adts"_container, "aac", "aac", "adts"},
    {"mpegps_dvd"_container, "mpg", "", ""},
    {"mpegts_m2ts"_container, "ts", "", ""},
    {"mpegps_mpeg1"_container, "mpg", "", ""},
    {"mpegts_204"_container, "ts", "", ""},
    {"rm"_container, "rm", "rm", "rm"},
    {"dts"_container, "dts", "dts|dtshd", "dts"},
    {"eac3"_container, "eac3", "eac3", "eac3"},
    {"truehd"_container, "thd", "truehd", "truehd"},
    {"wavpack"_container, "wv", "wv", "wv"},
    {"dsf"_container, "dsf", "dsf", ""},
    {"dff"_container, "dff", "iff", ""},
    {"caf"_container, "caf", "caf", "caf"},
    {"tta"_container, "tta", "tta", "tta"},
    {"mpc"_container, "mpc", "mpc|mpc8", ""},
    {"amr"_container, "amr", "amr|amrnb|amrwb", "amr"},
    {"w64"_container, "w64", "w64", "w64"},
    {"latm"_container, "latm", "loas", "latm"},
    {"mpegvideo"_container, "m2v", "mpegvideo", "mpeg1video|mpeg2video"},
    {"h264"_container, "h264", "h264", "h264"},
    {"hevc"_container, "hevc", "hevc", "hevc"},
    {"mpeg4video"_container, "m4v", "m4v", "m4v"},
    {"vc1"_container, "vc1", "vc1|vc1test", "vc1"},
    {"ivf"_container, "ivf", "ivf", "ivf"},
    {"dv"_container, "dv", "dv", "dv"},
    {"mxf"_container, "mxf", "mxf", "mxf"},
};

constexpr const MediaNames *rowOf(int formatId)
{
    const auto *const row = std::ranges::find(s_MediaNames, formatId, &MediaNames::formatId);
    return row == std::end(s_MediaNames) ? nullptr : row;
}
static_assert(std::ranges::all_of(s_ContainerNames, [](const RegistryName &container) {
    return container.id == kAnyContainer || rowOf(container.id);
}));
static_assert(std::ranges::all_of(s_SubtypeNames, [](const SubtypeName &subtype) {
    return rowOf(formatIdOf(subtype.containerId, subtype.number)) != nullptr;
}));

/// Whether a name is one of those in a list.
bool lists(std::string_view names, std::string_view name)
{
    while (!names.empty()) {
        const std::string_view next = names.substr(0, names.find('|'));
        if (next == name) return true;
        names.remove_prefix(std::min(names.size(), next.size() + 1));
    }
    return false;
}

std::optional<int> containerListing(std::string_view MediaNames::*names, std::string_view name)
{
    for (const MediaNames &row : s_MediaNames)
        if (lists(row.*names, name)) return containerPart(row.formatId);
    return std::nullopt;
}

} // namespace

std::optional<int> containerReadBy(std::string_view demuxer)
{
    return containerListing(&MediaNames::demuxers, demuxer);
}

std::optional<int> containerWrittenBy(std::string_view muxer)
{
    return containerListing(&MediaNames::muxers, muxer);
}

bool writesSubtype(std::string_view muxer, int formatId)
{
    const MediaNames *row = rowOf(formatId);
    return row && lists(row->muxers, muxer);
}

std::string_view extensionOf(int formatId)
{
    const MediaNames *row = rowOf(formatId);
    if (!row) row = rowOf(containerPart(formatId));
    return row ? row->extension : "out";
}

} // namespace vornak::tool

// Containers and their subtypes: the brands of MP4 files, and what Matroska files say they are.
#include "platform/registry_names.h"

#include "base/fixed_text.h"
#include "platform/name_index.h"

namespace vornak {
namespace {

constexpr int kMp4 = 8;
constexpr int kMatroska = 12;

constexpr auto s_ContainerNames = std::to_array<RegistryName>({
    {"any", 0},
    {"mp3", 1},
    {"wav", 2},
    {"flac", 3},
    {"ape", 4},
    {"ogg", 5},
    {"ac3", 6},
    {"asf", 7},
    {"mp4", kMp4},
    {"avi", 9},
    {"mpegps", 10},
    {"mpegts", 11},
    {"matroska", kMatroska},
    {"flv", 13},
    {"aiff", 14},
    {"au", 15},
    {"adts", 16},
    // Forms of the two MPEG streams. A video's matching takes them for 10 and 11, so no name
    // that people would write for one of these streams leads here.
    {"mpegps_dvd", 17},   // with the navigation packs of DVD-Video
    {"mpegts_m2ts", 18},  // packets of 192 bytes, each with a time stamp
    {"mpegps_mpeg1", 19}, // MPEG-1 system stream
    {"mpegts_204", 20},   // packets of 204 bytes, each with error correction
    {"rm", 21},
    // not in the classic numbering
    {"dts", 64},
    {"eac3", 65},
    {"truehd", 66},
    {"wavpack", 67},
    {"dsf", 68},
    {"dff", 69},
    {"caf", 70},
    {"tta", 71},
    {"mpc", 72},
    {"amr", 73},
    {"w64", 74},
    {"latm", 75},
    {"mpegvideo", 80}, // elementary streams
    {"h264", 81},
    {"hevc", 82},
    {"mpeg4video", 83},
    {"vc1", 84},
    {"ivf", 85},
    {"dv", 86},
    {"mxf", 87},
});
static_assert(std::ranges::adjacent_find(s_ContainerNames, std::ranges::greater_equal{},
                                         &RegistryName::id) == s_ContainerNames.end());

constexpr auto s_ContainerAliases = std::to_array<Alias>({
    {"*", "any"},         {"mpegaudio", "mp3"}, {"wave", "wav"},     {"oga", "ogg"},
    {"ogv", "ogg"},       {"wma", "asf"},       {"wmv", "asf"},      {"mpeg4", "mp4"},
    {"isobmff", "mp4"},   {"mpeg", "mpegps"},   {"mpg", "mpegps"},   {"ps", "mpegps"},
    {"vob", "mpegps"},    {"dvd", "mpegps"},    {"vcd", "mpegps"},   {"ts", "mpegts"},
    {"mts", "mpegts"},    {"m2t", "mpegts"},    {"m2ts", "mpegts"},  {"tp", "mpegts"},
    {"trp", "mpegts"},    {"bdav", "mpegts"},   {"mkv", "matroska"}, {"mka", "matroska"},
    {"mk3d", "matroska"}, {"aif", "aiff"},      {"aifc", "aiff"},    {"snd", "au"},
    {"aac", "adts"},      {"realmedia", "rm"},  {"rmvb", "rm"},      {"wv", "wavpack"},
    {"m1v", "mpegvideo"}, {"m2v", "mpegvideo"}, {"h265", "hevc"},
});

// The numbers of MP4 brands are those that tags spell out; other subtypes keep clear of them.
constexpr auto s_SubtypeNames = std::to_array<SubtypeName>({
    {kMp4, 1, "m4a"},
    {kMp4, 2, "m4v"},
    {kMp4, 3, "mp41"},
    {kMp4, 4, "mov"}, // no brand: QuickTime files have "qt", also those without any
    {kMp4, 5, "msnv"},
    {kMp4, 6, "isom"},
    {kMp4, 7, "mjp2"},
    {kMp4, 8, "3g2"},
    {kMp4, 9, "3gp"},
    {kMp4, 10, "mp42"},
    {kMp4, 11, "qt"},
    {kMatroska, 12, "webm"},
});

constexpr auto s_SubtypeAliases = std::to_array<Alias>({
    {"mp4", "mp41"},
    {"quicktime", "qt"},
    {"3gpp", "3gp"},
    {"3gpp2", "3g2"},
});

// Containers that go by the name of a subtype: files with that subtype alone are meant.
constexpr auto s_NarrowNames = std::to_array<RegistryName>({
    {"m4a", kMp4 | 1 << 16},
    {"m4v", kMp4 | 2 << 16},
    {"3g2", kMp4 | 8 << 16},
    {"3gp", kMp4 | 9 << 16},
    {"mov", kMp4 | 11 << 16},
    {"qt", kMp4 | 11 << 16},
    {"quicktime", kMp4 | 11 << 16},
    {"webm", kMatroska | 12 << 16},
});

constexpr auto s_AllContainerNames = [] {
    std::array<RegistryName, s_ContainerNames.size() + s_NarrowNames.size()> rows{};
    std::ranges::copy(s_NarrowNames, std::ranges::copy(s_ContainerNames, rows.begin()).out);
    return rows;
}();
constexpr NameIndex s_ContainerIndex(s_AllContainerNames, s_ContainerAliases);

constexpr bool isSubtypeName(const SubtypeName &row, const FoldedName &folded)
{
    if (foldName(row.name) == folded) return true;
    return std::ranges::any_of(s_SubtypeAliases, [&](const Alias &alias) {
        return std::string_view(alias.name) == row.name && foldName(alias.alias) == folded;
    });
}

const SubtypeName *findSubtype(int containerId, const char *name)
{
    const std::optional<FoldedName> folded = foldName(name);
    if (!folded) return nullptr;
    for (const SubtypeName &row : s_SubtypeNames)
        if (row.containerId == containerId && isSubtypeName(row, *folded)) return &row;
    return nullptr;
}

const SubtypeName *findSubtype(int containerId, int number)
{
    for (const SubtypeName &row : s_SubtypeNames)
        if (row.containerId == containerId && row.number == number) return &row;
    return nullptr;
}

const RegistryName *findContainer(int containerId)
{
    const auto *row =
        std::ranges::lower_bound(s_ContainerNames, containerId, {}, &RegistryName::id);
    return row != s_ContainerNames.end() && row->id == containerId ? row : nullptr;
}

constexpr int containerOf(int id)
{
    return id & 0xFFFF;
}

constexpr std::string_view kContainerPrefix = "FORMAT_";
constexpr std::string_view kSubtypePrefix = "BRAND_";
static_assert(kContainerPrefix.size() == VORNAK_CONTAINER_PREFIX);
static_assert(kSubtypePrefix.size() == VORNAK_SUBTYPE_PREFIX);

} // namespace

std::span<const RegistryName> containerNames()
{
    return s_ContainerNames;
}

std::span<const SubtypeName> subtypeNames()
{
    return s_SubtypeNames;
}

} // namespace vornak

int ContainerFormatNameToID(const char *name, const char *subtype, int *id)
{
    using namespace vornak;

    if (!name || !id) return 1;
    const RegistryName *container = s_ContainerIndex.find(name);
    if (!container) return 1;
    if (!subtype || *subtype == '\0') {
        *id = container->id;
        return 0;
    }
    const SubtypeName *row = findSubtype(containerOf(container->id), subtype);
    if (!row) return 1;
    *id = row->containerId | row->number << 16;
    return 0;
}

int ContainerFormatIDToName(char *name, char *subtype, int id)
{
    using namespace vornak;

    if (!name || !subtype) return 1;
    FixedText nameText(name, VORNAK_NAME_SIZE);
    FixedText subtypeText(subtype, VORNAK_NAME_SIZE);
    const RegistryName *container = findContainer(containerOf(id));
    if (!container || !nameText.append(kContainerPrefix, container->name)) return 1;
    if (id >> 16 == 0) return 0;
    const SubtypeName *row = findSubtype(container->id, id >> 16);
    return row && subtypeText.append(kSubtypePrefix, row->name) ? 0 : 1;
}

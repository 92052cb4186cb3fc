// Containers and their subtypes: the brands of MP4 files, and what Matroska files say they are.
#include "platform/registry_names.h"

#include "base/fixed_text.h"
#include "platform/name_index.h"

namespace vornak {
namespace {

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

constexpr auto s_SubtypeAliases = std::to_array<Alias>({
    {"mp4", "mp41"},
    {"quicktime", "qt"},
    {"3gpp", "3gp"},
    {"3gpp2", "3g2"},
});

// Containers that go by the name of a subtype: files with that subtype alone are meant.
constexpr auto s_NarrowNames = std::to_array<RegistryName>({
    {"m4a", "mp4/m4a"_container},
    {"m4v", "mp4/m4v"_container},
    {"3g2", "mp4/3g2"_container},
    {"3gp", "mp4/3gp"_container},
    {"mov", "mp4/qt"_container},
    {"qt", "mp4/qt"_container},
    {"quicktime", "mp4/qt"_container},
    {"webm", "matroska/webm"_container},
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

constexpr std::string_view kContainerPrefix = "FORMAT_";
constexpr std::string_view kSubtypePrefix = "BRAND_";
static_assert(kContainerPrefix.size() == VORNAK_CONTAINER_PREFIX);
static_assert(kSubtypePrefix.size() == VORNAK_SUBTYPE_PREFIX);

} // namespace
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
    const SubtypeName *row = findSubtype(containerPart(container->id), subtype);
    if (!row) return 1;
    *id = formatIdOf(row->containerId, row->number);
    return 0;
}

int ContainerFormatIDToName(char *name, char *subtype, int id)
{
    using namespace vornak;

    if (!name || !subtype) return 1;
    FixedText nameText(name, VORNAK_NAME_SIZE);
    FixedText subtypeText(subtype, VORNAK_NAME_SIZE);
    const RegistryName *container = findContainer(containerPart(id));
    if (!container || !nameText.append(kContainerPrefix, container->name)) return 1;
    if (subtypePart(id) == 0) return 0;
    const SubtypeName *row = findSubtype(container->id, subtypePart(id));
    return row && subtypeText.append(kSubtypePrefix, row->name) ? 0 : 1;
}

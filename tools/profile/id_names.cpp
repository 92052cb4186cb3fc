#include "tools/profile/id_names.h"

#include "include/vornak_host.h"
#include "platform/registry_names.h"

#include <algorithm>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

/// One text for each bit that is set, by `name`, which returns null for a bit without one.
template <class Name>
std::vector<std::string> bitTexts(int bits, Name name)
{
    std::vector<std::string> texts;
    const auto set = static_cast<unsigned>(bits);
    for (unsigned bit = 1; bit != 0; bit <<= 1U) {
        if ((set & bit) == 0) continue;
        const char *known = name(static_cast<int>(bit));
        texts.push_back(known ? known : fmt::format("0x{:x}", bit));
    }
    return texts;
}

std::vector<std::string> namesOf(std::span<const RegistryName> rows)
{
    std::vector<std::string> names;
    for (const RegistryName &row : rows)
        if (row.id != 0) names.emplace_back(row.name);
    return names;
}

} // namespace

std::string codecText(int id)
{
    char name[VORNAK_NAME_SIZE] = {};
    if (CodecIDToName(name, id) != 0) return fmt::format("codec {}", id);
    return name + VORNAK_CODEC_PREFIX;
}

std::string containerText(int id)
{
    char name[VORNAK_NAME_SIZE] = {};
    char subtype[VORNAK_NAME_SIZE] = {};
    if (ContainerFormatIDToName(name, subtype, id) != 0) return fmt::format("container {}", id);
    if (!*subtype) return name + VORNAK_CONTAINER_PREFIX;
    return fmt::format("{}/{}", name + VORNAK_CONTAINER_PREFIX, subtype + VORNAK_SUBTYPE_PREFIX);
}

std::vector<std::string> profileTexts(int bits, int codecId)
{
    char name[VORNAK_NAME_SIZE];
    return bitTexts(bits, [&](int bit) -> const char * {
        name[0] = '\0';
        return ProfileIDToName(name, bit, codecId) == 0 ? name : nullptr;
    });
}

std::vector<std::string> playExceptionTexts(int bits)
{
    return bitTexts(bits, [](int bit) -> const char * {
        for (const RegistryName &row : playExceptionNames())
            if (row.id == bit) return row.name;
        return nullptr;
    });
}

int allProfilesOf(int codecId)
{
    int bits = 0;
    for (const ProfileName &row : profileNames())
        if (row.codecId == codecId) bits |= row.bit;
    return bits;
}

std::vector<std::string> knownContainers()
{
    return namesOf(s_ContainerNames);
}

std::vector<std::string> knownSubtypes(int containerId)
{
    std::vector<std::string> names;
    for (const SubtypeName &row : s_SubtypeNames)
        if (row.containerId == containerId) names.emplace_back(row.name);
    return names;
}

std::vector<std::string> knownPlayExceptions()
{
    return namesOf(playExceptionNames());
}

std::vector<std::string> splitAtBars(std::string_view list)
{
    std::vector<std::string> entries;
    while (!list.empty()) {
        const std::string_view entry = list.substr(0, list.find('|'));
        if (!entry.empty()) entries.emplace_back(entry);
        list.remove_prefix(std::min(list.size(), entry.size() + 1));
    }
    return entries;
}

std::string channelsText(int channels)
{
    return fmt::format("{} {}", channels, channels == 1 ? "channel" : "channels");
}

std::string bitRateText(int bitrate, bool estimated)
{
    return fmt::format("{} bit/s{}", bitrate, estimated ? " (estimated)" : "");
}

} // namespace vornak::tool

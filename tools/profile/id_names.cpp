#include "tools/profile/id_names.h"

#include "base/media_ids.h"
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

int bitsNamed(std::string_view names, int (*lookup)(const char *name, int *bit))
{
    int bits = 0;
    for (const std::string &name : splitList(names, '|')) {
        int bit = 0;
        if (lookup(name.c_str(), &bit) == 0) bits |= bit;
    }
    return bits;
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

std::string channelsText(int channels)
{
    return fmt::format("{} {}", channels, channels == 1 ? "channel" : "channels");
}

std::string bitRateText(int bitrate, bool estimated)
{
    return fmt::format("{} bit/s{}", bitrate, estimated ? " (estimated)" : "");
}

} // namespace vornak::tool

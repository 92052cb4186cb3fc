#include "tools/import/names.h"

#include "base/media_ids.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"

#include <algorithm>

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

int allProfilesOf(int codec)
{
    int bits = 0;
    for (const ProfileName &row : profileNames())
        if (row.codecId == codec) bits |= row.bit;
    return bits;
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

} // namespace vornak::tool

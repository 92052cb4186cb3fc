// Names that the registry doesn't know, or that don't go together.
#include "tools/check/checks.h"

#include "base/ascii_case.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "profile/name_list.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fmt/format.h>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::string_view kOtherSeparators = ",;/ \t\n"; // that people write in place of a bar

constexpr std::string_view kJoints = "-_. "; // between the two parts of a name
constexpr std::size_t kLongestNames = 64;    // in one attribute, of several elements
constexpr std::size_t kMostWords = 6;        // of the longest known names together

/// Whether a codec, or the wildcard, is of the kind that the element is for.
bool suits(int codec, unsigned element)
{
    if (element == kVcodec) return codec < kFirstAudioCodec;
    return codec == kAnyCodec || (codec >= kFirstAudioCodec && codec < kFirstSubtitleCodec);
}

std::vector<std::string> knownCodecs(unsigned element)
{
    std::vector<std::string> names;
    for (const RegistryName &row : s_CodecNames)
        if (suits(row.id, element)) names.emplace_back(row.name);
    return names;
}

std::vector<std::string> profilesOf(int codecId)
{
    std::vector<std::string> names;
    for (const ProfileName &row : profileNames())
        if (row.codecId == codecId) names.emplace_back(row.name);
    return names;
}

std::string oneOf(const std::vector<std::string> &names, std::string_view otherwise)
{
    if (names.empty()) return std::string(otherwise);
    return fmt::format("known are {}", fmt::join(names, ", "));
}

/// Common names for one codec of a family, where the family may be meant.
constexpr struct NarrowName {
    const char *name;
    const char *others;
} s_NarrowNames[] = {
    {"pcm", "other sample formats"},
    {"lpcm", "other sample formats"},
    {"dsd", "other bit orders and layouts"},
    {"wma", "other versions"},
};

void checkNarrowName(const ElementPlace &place, pugi::xml_attribute name, int codec, Report &report)
{
    const auto *const row =
        std::ranges::find(s_NarrowNames, foldName(name.value()),
                          [](const NarrowName &narrow) { return foldName(narrow.name); });
    if (row == std::end(s_NarrowNames)) return;
    report.add(Fault::NarrowName, place.element, name,
               fmt::format("{} is read as {} and nothing else", shown(name), codecText(codec)),
               fmt::format("{} need rules of their own; write NAME=\"{}\" if this one is meant",
                           row->others, codecText(codec)));
}

/// `NAME="aac" PROFILE="lc"` for a name that is made of both, "aac-lc" or "lc aac"; else empty.
std::string codecAndProfile(const std::string &name)
{
    std::string joined = name;
    std::ranges::replace_if(
        joined, [](char c) { return kJoints.find(c) != std::string_view::npos; }, '|');
    const std::vector<std::string> words = splitList(joined);
    const std::size_t count = words.size() > kMostWords ? 0 : words.size();
    const auto word = [&](std::size_t i) { return words.begin() + static_cast<std::ptrdiff_t>(i); };
    for (std::size_t from = 0; from < count; ++from)
        for (std::size_t to = from + 1; to <= count; ++to) {
            std::vector<std::string> rest(words.begin(), word(from));
            rest.insert(rest.end(), word(to), words.end());
            const std::string codec = fmt::format("{}", fmt::join(word(from), word(to), "_"));
            const std::string profile = fmt::format("{}", fmt::join(rest, "_"));
            int id = 0;
            if (CodecNameToID(codec.c_str(), &id) == 0 && codecHasProfile(id, profile.c_str()))
                return fmt::format("NAME=\"{}\" PROFILE=\"{}\"", codec, profile);
        }
    return {};
}

/// What names of a kind are looked up by.
struct NameKind {
    Fault fault;
    int (*lookup)(const char *name, int *id);
    std::string (*text)(int id);
    const char *otherwise;
};

/// A name as it may be meant: "dolbydigital" for "Dolby Digital".
std::string lettersAndDigits(std::string_view text)
{
    std::string letters;
    std::ranges::copy_if(text, std::back_inserter(letters),
                         [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
    return letters;
}

/// The ids of a text that is made of known names alone, "h264|hevc" or "H.264/AVC"; else none.
std::vector<int> idsMeant(std::string_view text, const NameKind &kind)
{
    int id = 0;
    if (kind.lookup(lettersAndDigits(text).c_str(), &id) == 0) return {id};
    std::string joined(text);
    std::ranges::replace_if(
        joined, [](char c) { return kOtherSeparators.find(c) != std::string_view::npos; }, '|');
    std::vector<int> ids;
    for (const std::string &name : splitList(joined)) {
        if (kind.lookup(name.c_str(), &id) != 0) return {};
        if (std::ranges::find(ids, id) == ids.end()) ids.push_back(id);
    }
    return ids;
}

void reportName(const NameKind &kind, const ElementPlace &place, pugi::xml_attribute name,
                const std::string &problem, const std::vector<std::string> &known, Report &report)
{
    std::vector<std::string> meant;
    if (std::strlen(name.value()) <= kLongestNames)
        for (const int id : idsMeant(name.value(), kind)) meant.push_back(kind.text(id));
    if (meant.empty())
        return report.add(kind.fault, place.element, name, problem,
                          report.suggest(lettersAndDigits(name.value()), known, kind.otherwise));
    report.add(kind.fault, place.element, name, problem,
               meant.size() == 1 ? fmt::format("write {}", meant.front())
                                 : fmt::format("one name for each element: write one {} for {}",
                                               place.row.name, fmt::join(meant, " and one for ")));
    if (meant.size() == 1) report.mendValue(place.element, name, meant.front());
}

void checkCodecName(const ElementPlace &place, pugi::xml_attribute name, Report &report)
{
    const std::optional<int> codec = codecOf(place.element);
    if (!codec) {
        const std::string both = codecAndProfile(name.value());
        const std::string problem = fmt::format("{} is no codec known here: the {} is left out",
                                                shown(name), place.row.name);
        if (both.empty())
            return reportName({Fault::UnknownCodec, CodecNameToID, codecText,
                               "see the list of codecs in man 5 vornak-profile"},
                              place, name, problem, knownCodecs(place.row.element), report);
        report.add(Fault::UnknownCodec, place.element, name, problem, "write " + both);
        if (!place.element.attribute("PROFILE")) report.mendWhole(place.element, name, both);
        return;
    }
    if (suits(*codec, place.row.element))
        checkNarrowName(place, name, *codec, report);
    else
        report.add(Fault::CodecKind, place.element, name,
                   fmt::format("{} is no {} codec: no source fits this {}", shown(name),
                               place.row.element == kVcodec ? "video" : "audio", place.row.name),
                   place.row.element == kVcodec ? "make it an ACODEC" : "make it a VCODEC");
}

void checkContainerName(const ElementPlace &place, pugi::xml_attribute name, Report &report)
{
    int id = 0;
    if (ContainerFormatNameToID(name.value(), nullptr, &id) != 0)
        return reportName(
            {Fault::UnknownContainer,
             [](const char *text, int *found) {
                 return ContainerFormatNameToID(text, nullptr, found);
             },
             containerText, "see the list of containers in man 5 vornak-profile"},
            place, name,
            fmt::format("{} is no container known here: the FORMAT is left out", shown(name)),
            knownContainers(), report);
    const pugi::xml_attribute subtype = place.element.attribute("SUBTYPE");
    if (!subtype || ContainerFormatNameToID(name.value(), subtype.value(), &id) == 0) return;
    const std::vector<std::string> known = knownSubtypes(containerPart(id));
    report.add(Fault::UnknownSubtype, place.element, subtype,
               fmt::format("{} is no subtype of {}: the FORMAT is left out", shown(subtype),
                           excerpt(name.value())),
               report.suggest(subtype.value(), known, oneOf(known, "leave SUBTYPE out")));
}

struct ListedName {
    std::string written;
    std::string name; ///< as the loader looks it up
};

/// The names of a list that the loader sees.
std::vector<ListedName> namesIn(NameList &list)
{
    std::vector<ListedName> names;
    while (const char *name = list.next()) names.push_back({std::string(list.written()), name});
    return names;
}

/// What to look up, and what to say of a name that isn't there.
struct ListKind {
    Fault fault;
    int (*lookup)(const char *name, int *bit);
    const char *what;
    const char *ifNoneIsLeft;
};

/// What to write for known names with other separators between them; empty for all else.
std::string withBars(std::string written, const ListKind &kind)
{
    std::ranges::replace_if(
        written, [](char c) { return kOtherSeparators.find(c) != std::string_view::npos; }, '|');
    const std::vector<std::string> names = splitList(written);
    int bit = 0;
    const bool areKnown = std::ranges::all_of(
        names, [&](const std::string &name) { return kind.lookup(name.c_str(), &bit) == 0; });
    if (names.empty() || !areKnown) return {};
    return fmt::format("{}", fmt::join(names, "|"));
}

/// What to write for "High@L4.1", as programs that describe files have it; empty for all else.
std::string withoutLevel(const std::string &name, pugi::xml_node element)
{
    const std::size_t at = name.find('@');
    const std::string profile = lowerCase(std::string_view(name).substr(0, at));
    if (at == std::string::npos ||
        !codecHasProfile(codecOf(element).value_or(kAnyCodec), profile.c_str()))
        return {};
    const auto level = levelMeant(element, name.c_str() + at + 1);
    return fmt::format("write \"{}\" in its place{}", profile,
                       level && !element.attribute("LEVEL")
                           ? fmt::format(", and LEVEL=\"{}\"", level->coded)
                           : "");
}

void checkList(const ElementPlace &place, pugi::xml_attribute list, const ListKind &kind,
               const std::vector<std::string> &known, Report &report)
{
    NameList reading(list.value());
    const std::vector<ListedName> names = namesIn(reading);
    if (reading.isCut())
        report.add(Fault::NameListTooLong, place.element, list,
                   fmt::format("{} is longer than {} characters without its blanks: what lies "
                               "beyond is ignored",
                               shown(list), NameList::kLongest),
                   "shorten it");
    const auto isKnown = [&](const ListedName &listed) {
        int bit = 0;
        return kind.lookup(listed.name.c_str(), &bit) == 0;
    };
    const bool noneIsLeft = std::ranges::none_of(names, isKnown);
    for (const ListedName &listed : names) {
        if (isKnown(listed)) continue;
        const std::string bars = withBars(listed.written, kind);
        const std::string parts = withoutLevel(listed.name, place.element);
        report.add(
            kind.fault, place.element, list,
            fmt::format("\"{}\" is no {} known here: it is ignored{}", excerpt(listed.name),
                        kind.what, noneIsLeft ? kind.ifNoneIsLeft : ""),
            !bars.empty() ? fmt::format("names are separated by \"|\": write \"{}\"", excerpt(bars))
            : !parts.empty() ? parts
                             : report.suggest(listed.name, known, oneOf(known, "leave it out")));
        if (!bars.empty() && names.size() == 1) report.mendValue(place.element, list, bars);
    }
}

constexpr ListKind kProfiles = {Fault::UnknownProfile, ProfileNameToID, "profile",
                                ", and so every profile is accepted"};
constexpr ListKind kExceptions = {Fault::UnknownException, PlayExceptionNameToID, "play exception",
                                  ", and so nothing is excepted"};

void checkProfilesFit(const ElementPlace &place, pugi::xml_attribute list, int codecId,
                      const std::vector<std::string> &known, Report &report)
{
    NameList names(list.value());
    while (const char *name = names.next()) {
        int bit = 0;
        if (ProfileNameToID(name, &bit) != 0) continue; // said already
        if (codecHasProfile(codecId, name)) continue;
        report.add(Fault::ForeignProfile, place.element, list,
                   fmt::format("{} has no profile \"{}\"",
                               excerpt(place.element.attribute("NAME").value()), excerpt(name)),
                   oneOf(known, "no profiles of this codec are known: leave PROFILE out"));
    }
}

} // namespace

std::optional<int> codecOf(pugi::xml_node element)
{
    int id = 0;
    if (CodecNameToID(element.attribute("NAME").value(), &id) != 0) return std::nullopt;
    return id;
}

void checkName(const ElementPlace &place, Report &report)
{
    if ((place.row.element & (kVcodec | kAcodec | kFormat)) == 0) return;
    const pugi::xml_attribute name = place.element.attribute("NAME");
    if (*name.value() == '\0')
        return report.add(Fault::MissingName, place.element, name,
                          fmt::format("{} without a NAME is left out", place.row.name),
                          "name what it is for");
    if (place.row.element == kFormat)
        checkContainerName(place, name, report);
    else
        checkCodecName(place, name, report);
}

void checkNameLists(const ElementPlace &place, Report &report)
{
    if ((place.row.element & (kVcodec | kAcodec)) == 0) return;
    if (const pugi::xml_attribute list = place.element.attribute("PROFILE")) {
        const std::optional<int> codec = codecOf(place.element);
        const std::vector<std::string> known =
            codec ? profilesOf(*codec) : std::vector<std::string>{};
        checkList(place, list, kProfiles, known, report);
        if (codec && *codec > 0) checkProfilesFit(place, list, *codec, known, report);
    }
    const pugi::xml_attribute exceptions = place.element.attribute("PLAY_EXCEPTION");
    if (exceptions && place.row.element == kVcodec)
        checkList(place, exceptions, kExceptions, knownPlayExceptions(), report);
}

} // namespace vornak::tool

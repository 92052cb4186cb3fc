// The checks of a profile: the walk over it, and a function for each thing to look at.
#pragma once

#include "base/rule_tables.h"
#include "tools/check/finding.h"
#include "tools/check/schema.h"

#include <optional>
#include <pugixml.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// All that is found in a profile, by place; throws ProfileError for one that can't be loaded.
/// @param text  receives the text in which the findings have their places
std::vector<Finding> checkProfile(const std::string &path, std::string &text);
inline std::vector<Finding> checkProfile(const std::string &path)
{
    std::string text;
    return checkProfile(path, text);
}

/// An element that the loader looks at, accepted or not.
struct ElementPlace {
    pugi::xml_node element;
    const ElementRow &row;
};

/// A record of the loaded profile, and what it was made of.
template <class Record>
struct RulePlace {
    const Record *record = nullptr;
    pugi::xml_node element;
    int position = 0;
};

/// A rule, and the rules that it lies in; those that it doesn't have are null.
struct Place {
    RulePlace<VideoRule> video; // null in MUSIC
    RulePlace<AudioRule> audio;
    RulePlace<ContainerEntry> entry;
};

/// The id of the codec that an element names; nothing for a name that the registry doesn't know.
std::optional<int> codecOf(pugi::xml_node element);

/// `MAXWIDTH="1920" MAXHEIGHT="1080"` for "1920x1080" and the bound "MAX"; empty for all else.
std::string sizePair(std::string_view text, std::string_view bound);

/// A level as streams code it, and what to do with it.
struct LevelMeant {
    std::string coded, advice;
};

/// The level of the element's codec that a text such as "4.1" or "L4.1" means.
std::optional<LevelMeant> levelMeant(pugi::xml_node element, const char *text);

using ElementCheck = void (*)(const ElementPlace &, Report &);
using RuleCheck = void (*)(const Place &, Report &);

// the file as text
void checkEncoding(pugi::xml_node device, Report &report);

/// Drops the findings that comments in the profile silence, and reports the comments that don't.
void applySilencers(pugi::xml_node device, Report &report);

// what stands where
void checkBeside(pugi::xml_node device, Report &report);
void checkChildren(const ElementPlace &place, Report &report);
void checkAttributes(const ElementPlace &place, Report &report);
void checkNeeded(const ElementPlace &place, Report &report);

// names, numbers and limits
void checkName(const ElementPlace &place, Report &report);
void checkNameLists(const ElementPlace &place, Report &report);
void checkNumbers(const ElementPlace &place, Report &report);
void checkLimits(const ElementPlace &place, Report &report);
void checkBitRates(const ElementPlace &place, Report &report);
void checkFrequencies(const Place &place, Report &report);

// whether a rule can be reached: a whole table at once
void checkVideoReach(std::span<const RulePlace<VideoRule>> rules, Report &report);
void checkAudioReach(std::span<const RulePlace<AudioRule>> rules, Report &report);
void checkContainerReach(std::span<const RulePlace<ContainerEntry>> entries, Report &report);

// what is transcoded into, and announced
void checkVideoTarget(const Place &place, Report &report);
void checkAudioTarget(const Place &place, Report &report);
void checkContainerTarget(const Place &place, Report &report);
void checkAnnouncement(const Place &place, Report &report);

// what the transcoder is told
void checkOption(const ElementPlace &place, Report &report);
void checkPixels(const Place &place, Report &report);
void checkPcm(const Place &place, Report &report);
void checkVideoOutput(std::span<const RulePlace<VideoRule>> rules, Report &report);
void checkAudioOutput(std::span<const RulePlace<AudioRule>> rules, Report &report);

} // namespace vornak::tool

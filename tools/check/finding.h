// What is wrong with a profile: the kinds of findings, and the list of those made.
#pragma once

#include "tools/profile/profile_document.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vornak::tool {

enum class Severity { Error, Warning, Note };

// In the order of the table of kinds.
enum class Fault {
    // what the loader leaves out or reads as something else
    UnknownElement,
    MisplacedElement,
    RepeatedSection,
    StrayText,
    UnknownAttribute,
    DuplicateAttribute,
    BareAmpersand,
    MissingName,
    UnknownCodec,
    NarrowName,
    UnknownContainer,
    UnknownSubtype,
    UnknownProfile,
    UnknownException,
    NameListTooLong,
    CodecWithoutContainers,
    VideoWithoutAudio,
    SectionWithoutRules,
    DeviceWithoutSections,
    TooManyRules,
    LeadingBlank,
    NumberStops,
    SuffixInside,
    SuffixOnDecimal,
    NumberOverflow,
    FrequencySnapped,
    EmptyValue,
    // limits that do nothing, or too much
    NegativeLimit,
    FlagValue,
    HalfSizePair,
    ToleranceWithoutSizes,
    WildcardLimits,
    MinAboveMax,
    LevelScale,
    LevelsRunBackwards,
    ForeignProfile,
    CodecKind,
    UnreachableRule,
    NoEffect,
    // what is transcoded into
    TargetForbidden,
    TargetWildcard,
    TargetWithoutOption,
    ContainerWithoutOption,
    OptionCodec,
    OptionContainer,
    OptionLimit,
    // what is announced
    MimeMissing,
    PnMissing,
};

struct FaultKind {
    Fault fault;
    Severity severity;
    const char *id; ///< stable
};

std::span<const FaultKind> faultKinds();
const FaultKind &kindOf(Fault fault);
const char *severityName(Severity severity);

struct Finding {
    int line = 0;
    Fault fault{};
    std::string element;   ///< its name, printable
    std::string attribute; ///< its name, printable; empty: the element as a whole
    std::string problem;
    std::string advice;
};

class Report {
public:
    explicit Report(const ProfileDocument &document) : document_(document) {}

    void add(Fault fault, pugi::xml_node element, std::string problem, std::string advice);
    void add(Fault fault, int line, pugi::xml_node element, std::string problem,
             std::string advice);
    /// @param attribute  of the element; a null one means the element as a whole
    void add(Fault fault, pugi::xml_node element, pugi::xml_attribute attribute,
             std::string problem, std::string advice);

    int lineOf(pugi::xml_node element) const { return document_.lineOf(element); }

    /// The value of an element's attribute with its references as they are written.
    std::string_view writtenValue(pugi::xml_node element, pugi::xml_attribute attribute);

    /// "did you mean NAME?", or `otherwise` when no known name is near. The search is slow, so
    /// only so many words of one profile get it.
    std::string suggest(std::string_view word, const std::vector<std::string> &known,
                        std::string otherwise);

    /// The findings by line; what is found on one line stays in the order of finding.
    std::vector<Finding> sorted() &&;

private:
    const ProfileDocument::WrittenAttribute &written(pugi::xml_node element,
                                                     pugi::xml_attribute attribute);

    const ProfileDocument &document_;
    std::vector<Finding> findings_;
    pugi::xml_node lastElement_; // whose attributes are below
    std::unordered_map<std::size_t, ProfileDocument::WrittenAttribute> written_;
    int suggestions_ = 0;
};

/// Text of the profile, printable, and cut when it is long.
std::string excerpt(std::string_view text);

/// NAME="value", printable.
std::string shown(pugi::xml_attribute attribute);

} // namespace vornak::tool

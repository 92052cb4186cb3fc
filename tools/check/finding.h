// What is wrong with a profile: the kinds of findings, and the list of those made.
#pragma once

#include "tools/profile/profile_document.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vornak::tool {

enum class Severity { Error, Warning, Note };

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
    End
};

struct FaultKind {
    Fault fault;
    Severity severity;
    const char *id; ///< stable
};

inline constexpr FaultKind s_FaultKinds[] = {
    {Fault::UnknownElement, Severity::Error, "unknown-element"},
    {Fault::MisplacedElement, Severity::Error, "misplaced-element"},
    {Fault::RepeatedSection, Severity::Error, "repeated-section"},
    {Fault::StrayText, Severity::Error, "stray-text"},
    {Fault::UnknownAttribute, Severity::Error, "unknown-attribute"},
    {Fault::DuplicateAttribute, Severity::Error, "duplicate-attribute"},
    {Fault::BareAmpersand, Severity::Warning, "bare-ampersand"},
    {Fault::MissingName, Severity::Error, "missing-name"},
    {Fault::UnknownCodec, Severity::Error, "unknown-codec"},
    {Fault::NarrowName, Severity::Note, "narrow-name"},
    {Fault::UnknownContainer, Severity::Error, "unknown-container"},
    {Fault::UnknownSubtype, Severity::Error, "unknown-subtype"},
    {Fault::UnknownProfile, Severity::Error, "unknown-profile"},
    {Fault::UnknownException, Severity::Error, "unknown-exception"},
    {Fault::NameListTooLong, Severity::Error, "name-list-too-long"},
    {Fault::CodecWithoutContainers, Severity::Error, "codec-without-containers"},
    {Fault::VideoWithoutAudio, Severity::Error, "video-without-audio"},
    {Fault::SectionWithoutRules, Severity::Warning, "section-without-rules"},
    {Fault::DeviceWithoutSections, Severity::Warning, "device-without-sections"},
    {Fault::TooManyRules, Severity::Error, "too-many-rules"},
    {Fault::LeadingBlank, Severity::Error, "leading-blank"},
    {Fault::NumberStops, Severity::Error, "number-stops"},
    {Fault::SuffixInside, Severity::Error, "suffix-inside"},
    {Fault::SuffixOnDecimal, Severity::Error, "suffix-on-decimal"},
    {Fault::NumberOverflow, Severity::Error, "number-overflow"},
    {Fault::FrequencySnapped, Severity::Warning, "frequency-snapped"},
    {Fault::EmptyValue, Severity::Warning, "empty-value"},
    {Fault::NegativeLimit, Severity::Warning, "negative-limit"},
    {Fault::FlagValue, Severity::Warning, "flag-value"},
    {Fault::HalfSizePair, Severity::Error, "half-size-pair"},
    {Fault::ToleranceWithoutSizes, Severity::Warning, "tolerance-without-sizes"},
    {Fault::WildcardLimits, Severity::Warning, "wildcard-limits"},
    {Fault::MinAboveMax, Severity::Error, "min-above-max"},
    {Fault::LevelScale, Severity::Warning, "level-scale"},
    {Fault::LevelsRunBackwards, Severity::Warning, "levels-run-backwards"},
    {Fault::ForeignProfile, Severity::Warning, "foreign-profile"},
    {Fault::CodecKind, Severity::Error, "codec-kind"},
    {Fault::UnreachableRule, Severity::Warning, "unreachable-rule"},
    {Fault::NoEffect, Severity::Warning, "no-effect"},
    {Fault::TargetForbidden, Severity::Warning, "target-forbidden"},
    {Fault::TargetWildcard, Severity::Error, "target-wildcard"},
    {Fault::TargetWithoutOption, Severity::Error, "target-without-option"},
    {Fault::ContainerWithoutOption, Severity::Error, "container-without-option"},
    {Fault::OptionCodec, Severity::Error, "option-codec"},
    {Fault::OptionContainer, Severity::Error, "option-container"},
    {Fault::OptionLimit, Severity::Error, "option-limit"},
    {Fault::MimeMissing, Severity::Note, "mime-missing"},
    {Fault::PnMissing, Severity::Note, "pn-missing"},
};

consteval bool haveKinds()
{
    std::size_t row = 0;
    for (const FaultKind &kind : s_FaultKinds)
        if (kind.fault != static_cast<Fault>(row++)) return false;
    return row == static_cast<std::size_t>(Fault::End);
}
static_assert(haveKinds(), "each fault has its row, in order");

constexpr const FaultKind &kindOf(Fault fault)
{
    return s_FaultKinds[static_cast<std::size_t>(fault)];
}

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

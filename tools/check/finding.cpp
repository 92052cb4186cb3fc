#include "tools/check/finding.h"

#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace vornak::tool {
namespace {

constexpr FaultKind s_Kinds[] = {
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

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < std::size(s_Kinds); ++i)
        if (s_Kinds[i].fault != static_cast<Fault>(i)) return false;
    return true;
}
static_assert(isInOrder());

constexpr int kMostSuggestions = 200;
constexpr std::size_t kLongestExcerpt = 60;

} // namespace

std::span<const FaultKind> faultKinds()
{
    return s_Kinds;
}

const FaultKind &kindOf(Fault fault)
{
    return s_Kinds[static_cast<std::size_t>(fault)];
}

const char *severityName(Severity severity)
{
    constexpr const char *s_Names[] = {"error", "warning", "note"};
    return s_Names[static_cast<std::size_t>(severity)];
}

void Report::add(Fault fault, int line, pugi::xml_node element, std::string problem,
                 std::string advice)
{
    findings_.push_back(
        {line, fault, excerpt(element.name()), {}, std::move(problem), std::move(advice)});
}

void Report::add(Fault fault, pugi::xml_node element, std::string problem, std::string advice)
{
    add(fault, lineOf(element), element, std::move(problem), std::move(advice));
}

void Report::add(Fault fault, pugi::xml_node element, pugi::xml_attribute attribute,
                 std::string problem, std::string advice)
{
    const int line = attribute ? written(element, attribute).line : lineOf(element);
    add(fault, line, element, std::move(problem), std::move(advice));
    findings_.back().attribute = excerpt(attribute.name());
}

std::string_view Report::writtenValue(pugi::xml_node element, pugi::xml_attribute attribute)
{
    return written(element, attribute).value;
}

const ProfileDocument::WrittenAttribute &Report::written(pugi::xml_node element,
                                                         pugi::xml_attribute attribute)
{
    if (element != lastElement_) {
        const auto attributes = document_.writtenAttributes(element);
        written_.clear();
        auto next = attributes.begin();
        for (const pugi::xml_attribute each : element.attributes())
            written_[each.hash_value()] = *next++;
        lastElement_ = element;
    }
    return written_[attribute.hash_value()];
}

std::string Report::suggest(std::string_view word, const std::vector<std::string> &known,
                            std::string otherwise)
{
    if (suggestions_ == kMostSuggestions) return otherwise;
    ++suggestions_;
    const std::optional<std::string> nearest = nearestName(word, known);
    return nearest ? fmt::format("did you mean {}?", *nearest) : otherwise;
}

std::vector<Finding> Report::sorted() &&
{
    std::ranges::stable_sort(findings_, {}, &Finding::line);
    return std::move(findings_);
}

std::string excerpt(std::string_view text)
{
    if (text.size() <= kLongestExcerpt) return printable(text);
    std::size_t end = kLongestExcerpt;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return fmt::format("{}... ({} bytes)", printable(text.substr(0, end)), text.size());
}

std::string shown(pugi::xml_attribute attribute)
{
    return fmt::format("{}=\"{}\"", excerpt(attribute.name()), excerpt(attribute.value()));
}

} // namespace vornak::tool

#include "tools/check/finding.h"

#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace vornak::tool {
namespace {

constexpr int kMostSuggestions = 200;
constexpr std::size_t kLongestExcerpt = 60;

} // namespace

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

#include "tools/check/finding.h"

#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <set>
#include <utility>

namespace vornak::tool {
namespace {

constexpr int kMostSuggestions = 200;
constexpr std::size_t kLongestExcerpt = 60;

/// Whether a byte goes on with a character of UTF-8.
bool isWithinCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

void Report::add(Fault fault, std::size_t offset, pugi::xml_node element, std::string problem,
                 std::string advice)
{
    findings_.push_back(
        {offset, fault, excerpt(element.name()), {}, std::move(problem), std::move(advice)});
}

void Report::add(Fault fault, pugi::xml_node element, std::string problem, std::string advice)
{
    add(fault, document_.offsetOf(element), element, std::move(problem), std::move(advice));
}

void Report::add(Fault fault, pugi::xml_node element, pugi::xml_attribute attribute,
                 std::string problem, std::string advice)
{
    if (!attribute) return add(fault, element, std::move(problem), std::move(advice));
    const std::size_t offset = written(element, attribute).name;
    add(fault, offset, element, std::move(problem), std::move(advice));
    findings_.back().attribute = excerpt(attribute.name());
}

void Report::mendValue(pugi::xml_node element, pugi::xml_attribute attribute,
                       std::string_view value)
{
    const auto &place = written(element, attribute);
    mend({place.value, place.size, std::string(value)});
}

void Report::mendWhole(pugi::xml_node element, pugi::xml_attribute attribute, std::string text)
{
    const auto &place = written(element, attribute);
    mend({place.name, place.value + place.size + 1 - place.name, std::move(text)});
}

void Report::mendElementName(pugi::xml_node element, const std::string &name)
{
    const std::string_view written = element.name();
    const std::size_t start = document_.offsetOf(element);
    mend({start + 1, written.size(), name});
    pugi::xml_node after = element;
    while (after && !after.next_sibling()) after = after.parent();
    after = after.next_sibling();
    const std::size_t end = after ? document_.offsetOf(after) : document_.text().size();
    const std::size_t tag = std::string_view(document_.text())
                                .substr(start, end - start)
                                .rfind(fmt::format("</{}", written));
    if (tag != std::string_view::npos) // else it is empty, and has none
        findings_.back().edits.push_back({start + tag + 2, written.size(), name});
}

void Report::mendByRemoval(pugi::xml_node element, pugi::xml_attribute attribute)
{
    const auto &place = written(element, attribute);
    const std::size_t end = place.value + place.size + 1;
    const std::size_t before = document_.text().find_last_not_of(" \t\r\n", place.name - 1) + 1;
    mend({before, end - before, {}});
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

std::string_view Report::writtenValue(pugi::xml_node element, pugi::xml_attribute attribute)
{
    const auto &place = written(element, attribute);
    return std::string_view(document_.text()).substr(place.value, place.size);
}

std::string Report::suggest(std::string_view word, const std::vector<std::string> &known,
                            std::string otherwise)
{
    if (suggestions_ == kMostSuggestions) return otherwise;
    ++suggestions_;
    const std::optional<std::string> nearest = nearestName(word, known);
    return nearest ? fmt::format("did you mean {}?", *nearest) : otherwise;
}

void Report::dropConsequences()
{
    constexpr struct {
        Fault fault, consequence;
    } s_Consequences[] = {
        {Fault::NumberStops, Fault::FrequencySnapped},
        {Fault::NumberStops, Fault::HalfSizePair},
        {Fault::NumberStops, Fault::LevelScale},
        {Fault::EmptyValue, Fault::FrequencySnapped},
    };
    std::set<std::pair<std::size_t, Fault>> found;
    for (const Finding &finding : findings_) found.emplace(finding.offset, finding.fault);
    std::erase_if(findings_, [&](const Finding &finding) {
        return std::ranges::any_of(s_Consequences, [&](const auto &row) {
            return row.consequence == finding.fault && found.contains({finding.offset, row.fault});
        });
    });
}

std::vector<Finding> Report::sorted() &&
{
    std::ranges::stable_sort(findings_, {}, &Finding::offset);
    int line = 0, column = 0;
    std::size_t counted = 0; // the bytes before which characters are counted
    for (Finding &finding : findings_) {
        finding.line = document_.lineAt(finding.offset);
        if (finding.line != line) {
            line = finding.line;
            column = 1;
            counted = document_.startOfLine(line);
        }
        const auto begin = document_.text().begin();
        column +=
            static_cast<int>(std::count_if(begin + static_cast<std::ptrdiff_t>(counted),
                                           begin + static_cast<std::ptrdiff_t>(finding.offset),
                                           [](char c) { return !isWithinCharacter(c); }));
        counted = finding.offset;
        finding.column = column;
    }
    return std::move(findings_);
}

std::string excerpt(std::string_view text)
{
    if (text.size() <= kLongestExcerpt) return printable(text);
    std::size_t end = kLongestExcerpt;
    while (end > 0 && isWithinCharacter(text[end])) --end;
    return fmt::format("{}... ({} bytes)", printable(text.substr(0, end)), text.size());
}

std::string shown(pugi::xml_attribute attribute)
{
    return fmt::format("{}=\"{}\"", excerpt(attribute.name()), excerpt(attribute.value()));
}

} // namespace vornak::tool

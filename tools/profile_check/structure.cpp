// What stands in a profile that the loader passes over.
#include "checks.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <unordered_set>

namespace vornak::tool {
namespace {

void reportUnknownChild(const ElementPlace &place, pugi::xml_node child, Report &report)
{
    report.add(Fault::UnknownElement, child,
               fmt::format("unknown element {} in {}: it is ignored, with all that it holds",
                           excerpt(child.name()), place.row.name),
               report.suggest(child.name(), childNames(place.row.element), "remove it"));
}

void checkChildElement(const ElementPlace &place, pugi::xml_node child, Report &report)
{
    const ElementRow *row = findElement(child.name());
    if (!row) return reportUnknownChild(place, child, report);
    if ((row->parents & place.row.element) == 0)
        return report.add(Fault::MisplacedElement, child,
                          fmt::format("{} in {} is ignored", row->name, place.row.name),
                          row->parents == kDocument
                              ? "a file holds one DEVICE"
                              : fmt::format("put it into {}", elementNames(row->parents)));
    const bool isSection = (row->element & (kMusic | kVideo)) != 0;
    if (isSection && child.previous_sibling(row->name))
        report.add(Fault::RepeatedSection, child,
                   fmt::format("a second {} section is ignored", row->name),
                   "move its rules into the first one");
}

void reportText(const ElementPlace &place, pugi::xml_node text, Report &report)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    std::string_view words = text.value();
    const std::size_t blanks = words.find_first_not_of(kBlanks);
    const auto lines = std::ranges::count(words.substr(0, blanks), '\n');
    words.remove_prefix(blanks);
    words = words.substr(0, words.find_last_not_of(kBlanks) + 1);
    report.add(Fault::StrayText, report.lineOf(text) + static_cast<int>(lines), place.element,
               fmt::format("the text \"{}\" in {} is ignored", excerpt(words), place.row.name),
               "values belong into attributes");
}

void checkAttribute(const ElementPlace &place, pugi::xml_attribute attribute, Report &report)
{
    const AttributeRow *row = findAttribute(attribute.name());
    if (row && (row->elements & place.row.element) != 0) return;
    const std::string problem = fmt::format("unknown attribute {} of {} is ignored",
                                            excerpt(attribute.name()), place.row.name);
    report.add(
        Fault::UnknownAttribute, place.element, attribute, problem,
        row ? fmt::format("it belongs to {}", elementNames(row->elements))
            : report.suggest(attribute.name(), attributeNames(place.row.element), "remove it"));
}

} // namespace

void checkChildren(const ElementPlace &place, Report &report)
{
    for (const pugi::xml_node child : place.element.children()) {
        if (child.type() == pugi::node_element) checkChildElement(place, child, report);
        if (child.type() == pugi::node_pcdata) reportText(place, child, report);
    }
}

void checkAttributes(const ElementPlace &place, Report &report)
{
    std::unordered_set<std::string_view> seen;
    for (const pugi::xml_attribute attribute : place.element.attributes()) {
        if (!seen.insert(attribute.name()).second)
            report.add(Fault::DuplicateAttribute, place.element, attribute,
                       fmt::format("{} is ignored: only the first {} counts", shown(attribute),
                                   excerpt(attribute.name())),
                       "remove one of them");
        else
            checkAttribute(place, attribute, report);
    }
}

void checkNeeded(const ElementPlace &place, Report &report)
{
    constexpr struct {
        unsigned element;
        const char *child;
        Fault fault;
        const char *problem;
        const char *advice;
    } s_Needs[] = {
        {kMusic, "ACODEC", Fault::SectionWithoutRules, "MUSIC holds no rule",
         "add an ACODEC, or remove the section"},
        {kVideo, "VCODEC", Fault::SectionWithoutRules, "VIDEO holds no rule",
         "add a VCODEC, or remove the section"},
        {kVcodec, "ACODEC", Fault::VideoWithoutAudio, "VCODEC without an ACODEC is left out",
         "add the sound that may come with this picture"},
        {kAcodec, "FORMAT", Fault::CodecWithoutContainers, "ACODEC without a FORMAT is left out",
         "add the containers that the player takes it from"},
    };
    for (const auto &need : s_Needs)
        if (place.row.element == need.element && !place.element.child(need.child))
            report.add(need.fault, place.element, need.problem, need.advice);
}

} // namespace vornak::tool

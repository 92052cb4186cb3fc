// Numbers that the loader reads as other numbers than those written.
#include "tools/check/checks.h"
#include "tools/check/number_scan.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <string_view>

namespace vornak::tool {
namespace {

bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

struct Number {
    const ElementPlace &place;
    pugi::xml_attribute attribute;
    const AttributeRow &row;
    std::string_view text;
    bool suffixes;
    NumberScan scan;
};

constexpr std::string_view s_Units[] = {"Hz",     "bps", "bit", "bits", "bit/s",
                                        "bits/s", "b/s", "px",  "ch",   "channels"};

bool equalsLowered(std::string_view text, std::string_view unit)
{
    const auto lowered = [](unsigned char c) { return std::tolower(c); };
    return std::ranges::equal(text, unit, {}, lowered, lowered);
}

/// Whether what follows a number only says what it counts. A "B" would be bytes, not bits.
bool isUnit(std::string_view text)
{
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    return !text.starts_with('B') && std::ranges::any_of(s_Units, [&](std::string_view unit) {
        return equalsLowered(text, unit);
    });
}

std::string stopAdvice(const Number &number)
{
    const std::string_view rest = number.text.substr(number.scan.stop);
    if (number.scan.hasDigits && std::ranges::all_of(rest, isSpace))
        return "remove the blank after it";
    if (number.scan.hasDigits && isUnit(rest))
        return fmt::format("leave out \"{}\", which follows the number", excerpt(rest));
    return number.suffixes ? "write a whole number; K is 1000, M is 1000000"
                           : "write a whole number";
}

void reportStop(const Number &number, Report &report)
{
    const char c = number.text[number.scan.stop];
    const std::string read =
        number.scan.hasDigits ? fmt::format("and gives {}", number.scan.value) : "and gives 0";
    if (!number.suffixes && suffixFactor(c) != 0)
        return report.add(Fault::SuffixOnDecimal, number.place.element, number.attribute,
                          fmt::format("{} ends at '{}' {}: this attribute takes no K or M",
                                      shown(number.attribute), c, read),
                          "write the number out");
    report.add(Fault::NumberStops, number.place.element, number.attribute,
               fmt::format("{} ends at '{}' {}", shown(number.attribute),
                           excerpt(number.text.substr(number.scan.stop, 1)), read),
               stopAdvice(number));
}

void reportOverflow(const Number &number, Report &report)
{
    const std::string read = number.suffixes ? fmt::format("wraps around to {}", number.scan.value)
                                             : std::string("is cut");
    report.add(Fault::NumberOverflow, number.place.element, number.attribute,
               fmt::format("{} does not fit into 32 bits and {}", shown(number.attribute), read),
               fmt::format("the largest number is {}", std::numeric_limits<std::int32_t>::max()));
}

void reportMeaning(const Number &number, Report &report)
{
    const int value = number.scan.value;
    if (value < 0 && number.row.isLimit && number.row.reading != Reading::Frequency)
        report.add(Fault::NegativeLimit, number.place.element, number.attribute,
                   fmt::format("{} sets no limit", shown(number.attribute)), "remove it");
    if (number.row.reading == Reading::Flag && value != 0 && value != 1)
        report.add(Fault::FlagValue, number.place.element, number.attribute,
                   fmt::format("{} has no effect", shown(number.attribute)), "write 1 or 0");
}

void checkNumber(const Number &number, Report &report)
{
    if (number.suffixes && isSpace(number.text.front()))
        return report.add(
            Fault::LeadingBlank, number.place.element, number.attribute,
            fmt::format("{} begins with a blank and gives 0", shown(number.attribute)),
            "remove the blank");
    if (number.scan.stop < number.text.size()) reportStop(number, report);
    if (number.scan.suffixInside)
        report.add(Fault::SuffixInside, number.place.element, number.attribute,
                   fmt::format("{} is read as {}: a K or M multiplies all before it",
                               shown(number.attribute), number.scan.value),
                   "write the number out");
    if (number.scan.overflows) return reportOverflow(number, report);
    reportMeaning(number, report);
}

bool isNumber(Reading reading)
{
    return reading >= Reading::Decimal;
}

} // namespace

void checkNumbers(const ElementPlace &place, Report &report)
{
    for (const AttributeRow &row : attributeRows()) {
        if ((row.elements & place.row.element) == 0 || row.reading == Reading::Name) continue;
        const pugi::xml_attribute attribute = place.element.attribute(row.name);
        if (!attribute) continue;
        const std::string_view text = attribute.value();
        if (text.empty()) {
            report.add(Fault::EmptyValue, place.element, attribute,
                       fmt::format("{} is empty", row.name), "give it a value, or remove it");
        } else if (isNumber(row.reading)) {
            const bool suffixes =
                row.reading == Reading::Suffixed || row.reading == Reading::Frequency;
            std::size_t start = 0;
            while (!suffixes && start < text.size() && isSpace(text[start])) ++start;
            checkNumber({place, attribute, row, text, suffixes, scanNumber(text, start, suffixes)},
                        report);
        }
    }
}

} // namespace vornak::tool

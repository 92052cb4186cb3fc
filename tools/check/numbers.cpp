// Numbers that the loader reads as other numbers than those written.
#include "tools/check/checks.h"

#include "profile/attribute_value.h"

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

/// A number as it is written, and what the loader makes of it.
struct WrittenNumber {
    const ElementPlace &place;
    pugi::xml_attribute attribute;
    const AttributeRow &row;
    Number made;
    std::string_view read, rest; ///< the parts of the text

    bool hasDigits() const { return read.find_first_of("0123456789") != std::string_view::npos; }
    bool hasSuffixInside() const { return read.find_first_of("KkMm") < read.size() - 1; }
};

WrittenNumber readAttribute(const ElementPlace &place, pugi::xml_attribute attribute,
                            const AttributeRow &row)
{
    const std::string_view text = attribute.value();
    const Number made = readNumber(row.unit, attribute.value());
    auto read = static_cast<std::size_t>(made.end - attribute.value());
    if (read == 0 && !takesSuffixes(row.unit)) { // no number, but perhaps blanks and a sign
        read = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
        if (read < text.size() && (text[read] == '-' || text[read] == '+')) ++read;
    }
    return {place, attribute, row, made, text.substr(0, read), text.substr(read)};
}

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

/// What to write instead; without a value where that can't be told for sure.
struct Mend {
    std::string advice, value;
};

/// "44.1K" as 44100, where that is a whole number; else empty.
std::string wholeNumber(const WrittenNumber &number)
{
    const std::string_view rest = number.rest;
    const std::size_t end = std::min(rest.find_first_not_of("0123456789", 1), rest.size());
    const std::size_t zeros = rest.substr(end) == "K" || rest.substr(end) == "k"   ? 3
                              : rest.substr(end) == "M" || rest.substr(end) == "m" ? 6
                                                                                   : 0;
    if (end < 2 || end - 1 > zeros) return {};
    return fmt::format("{}{}{:0<{}}", number.read, rest.substr(1, end - 1), "", zeros - (end - 1));
}

/// "5.1" as 6: the speakers, and the one for low sounds.
std::string channelCount(const WrittenNumber &number)
{
    if (number.row.unit != Unit::Channels || (number.rest != ".1" && number.rest != ".0"))
        return {};
    return std::to_string(number.made.value + (number.rest == ".1" ? 1 : 0));
}

Mend mendOfStop(const WrittenNumber &number)
{
    const std::string_view rest = number.rest;
    const std::string read(number.read);
    if (number.hasDigits() && std::ranges::all_of(rest, isSpace))
        return {"remove the blank after it", read};
    if (number.hasDigits() && isUnit(rest))
        return {fmt::format("leave out \"{}\", which follows the number", excerpt(rest)), read};
    if (number.hasDigits() && rest.starts_with('.')) {
        if (const std::string count = channelCount(number); !count.empty())
            return {
                fmt::format("{} is {} channels: write {}", number.attribute.value(), count, count),
                count};
        if (const std::string whole = takesSuffixes(number.row.unit) ? wholeNumber(number) : "";
            !whole.empty())
            return {fmt::format("write {}", whole), whole};
    }
    return {takesSuffixes(number.row.unit) ? "write a whole number; K is 1000, M is 1000000"
                                           : "write a whole number",
            {}};
}

void reportStop(const WrittenNumber &number, Report &report)
{
    const char c = number.rest.front();
    const std::string read =
        number.hasDigits() ? fmt::format("and gives {}", number.made.value) : "and gives 0";
    if (!takesSuffixes(number.row.unit) && suffixFactor(c) != 0)
        return report.add(Fault::SuffixOnDecimal, number.place.element, number.attribute,
                          fmt::format("{} ends at '{}' {}: this attribute takes no K or M",
                                      shown(number.attribute), c, read),
                          "write the number out");
    const Mend mend = mendOfStop(number);
    report.add(Fault::NumberStops, number.place.element, number.attribute,
               fmt::format("{} ends at '{}' {}", shown(number.attribute),
                           excerpt(number.rest.substr(0, 1)), read),
               mend.advice);
    if (!mend.value.empty()) report.mendValue(number.place.element, number.attribute, mend.value);
}

void reportOverflow(const WrittenNumber &number, Report &report)
{
    const std::string read = takesSuffixes(number.row.unit)
                                 ? fmt::format("wraps around to {}", number.made.value)
                                 : std::string("is cut");
    report.add(Fault::NumberOverflow, number.place.element, number.attribute,
               fmt::format("{} does not fit into 32 bits and {}", shown(number.attribute), read),
               fmt::format("the largest number is {}", std::numeric_limits<std::int32_t>::max()));
}

void reportMeaning(const WrittenNumber &number, Report &report)
{
    const int value = number.made.value;
    if (value < 0 && number.row.isLimit && number.row.unit != Unit::SampleRate)
        report.add(Fault::NegativeLimit, number.place.element, number.attribute,
                   fmt::format("{} sets no limit", shown(number.attribute)), "remove it");
    if (number.row.unit == Unit::Flag && value != 0 && value != 1)
        report.add(Fault::FlagValue, number.place.element, number.attribute,
                   fmt::format("{} has no effect", shown(number.attribute)), "write 1 or 0");
}

void reportLeadingBlank(const WrittenNumber &number, Report &report)
{
    report.add(Fault::LeadingBlank, number.place.element, number.attribute,
               fmt::format("{} begins with a blank and gives 0", shown(number.attribute)),
               "remove the blank");
    const auto &place = report.written(number.place.element, number.attribute);
    const std::string_view text = report.writtenValue(number.place.element, number.attribute);
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start != std::string_view::npos) report.mend({place.value, start, {}});
}

void checkNumber(const WrittenNumber &number, Report &report)
{
    if (takesSuffixes(number.row.unit) && isSpace(*number.attribute.value()))
        return reportLeadingBlank(number, report);
    if (!number.rest.empty()) reportStop(number, report);
    if (number.rest.empty() && !number.hasDigits())
        report.add(Fault::NumberStops, number.place.element, number.attribute,
                   fmt::format("{} has no digits and gives 0", shown(number.attribute)),
                   "write a whole number");
    if (number.hasSuffixInside())
        report.add(Fault::SuffixInside, number.place.element, number.attribute,
                   fmt::format("{} is read as {}: a K or M multiplies all before it",
                               shown(number.attribute), number.made.value),
                   "write the number out");
    if (number.made.overflows) return reportOverflow(number, report);
    reportMeaning(number, report);
}

bool isNumber(Unit unit)
{
    return unit != Unit::Text && unit != Unit::ProfileBits && unit != Unit::ExceptionBits;
}

} // namespace

void checkNumbers(const ElementPlace &place, Report &report)
{
    for (const AttributeRow &row : attributeRows()) {
        const pugi::xml_attribute attribute = place.element.attribute(row.name);
        if ((row.elements & place.row.element) == 0 || !attribute ||
            row.name == std::string_view("NAME"))
            continue;
        if (*attribute.value() == '\0')
            report.add(Fault::EmptyValue, place.element, attribute,
                       fmt::format("{} is empty", row.name), "give it a value, or remove it");
        else if (isNumber(row.unit))
            checkNumber(readAttribute(place, attribute, row), report);
    }
}

} // namespace vornak::tool

// Numbers that the loader reads as other numbers than those written.
#include "tools/check/checks.h"

#include "base/ascii_case.h"
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

constexpr std::string_view s_Units[] = {"Hz",  "bps", "bit", "bits", "bit/s",   "bits/s",
                                        "b/s", "px",  "p",   "ch",   "channels"};

/// Whether what follows a number only says what it counts. A "B" would be bytes, not bits.
bool isUnit(std::string_view text)
{
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    return !text.starts_with('B') && std::ranges::any_of(s_Units, [&](std::string_view unit) {
        return equalIgnoringCase(text, unit);
    });
}

/// What to write instead; without a value where that can't be told for sure.
struct Mend {
    std::string advice, value;
};

constexpr std::size_t kLongestNumber = 32; // with its unit, of those that are understood

/// "20,000,000" and "2 000" without what groups them, "2,5M" with a point; all else as it is, also
/// what could be either, such as "320,000K".
std::string plainNumber(std::string_view text)
{
    const auto digitsAt = [text](std::size_t at) {
        return std::min(text.find_first_not_of("0123456789", at), text.size()) - at;
    };
    std::size_t at = digitsAt(0);
    std::string plain(text.substr(0, at));
    const char mark = at < text.size() ? text[at] : '\0';
    while (at < text.size() && (mark == ',' || mark == ' ') && text[at] == mark &&
           digitsAt(at + 1) == 3) {
        plain += text.substr(at + 1, 3);
        at += 4;
    }
    const std::string_view rest = text.substr(at);
    const bool isGrouped = plain.size() < at;
    if (isGrouped && (rest.empty() || suffixFactor(rest.front()) == 0)) return plain.append(rest);
    if (!isGrouped && mark == ',' && digitsAt(at + 1) > 0)
        return fmt::format("{}.{}", plain, rest.substr(1));
    return std::string(text);
}

/// "44.1K", "44.1 kHz" and "44,100" as 44100, where that is a whole number; else empty.
std::string wholeNumber(std::string_view written)
{
    const std::string text = plainNumber(written.substr(0, kLongestNumber));
    std::string_view rest = text;
    const auto takeDigits = [&] {
        const std::size_t end = std::min(rest.find_first_not_of("0123456789"), rest.size());
        const std::string_view digits = rest.substr(0, end);
        rest.remove_prefix(end);
        return digits;
    };
    const std::string_view whole = takeDigits();
    std::string_view part;
    if (rest.starts_with('.')) {
        rest.remove_prefix(1);
        part = takeDigits();
        if (part.empty()) return {};
    }
    while (!rest.empty() && isSpace(rest.front())) rest.remove_prefix(1);
    const char suffix = rest.empty() ? ' ' : rest.front();
    const std::size_t zeros = suffix == 'K' || suffix == 'k'   ? 3
                              : suffix == 'M' || suffix == 'm' ? 6
                                                               : 0;
    if (zeros > 0) rest.remove_prefix(1);
    if (whole.empty() || part.size() > zeros || (!rest.empty() && !isUnit(rest))) return {};
    std::string digits = fmt::format("{}{}{:0<{}}", whole, part, "", zeros - part.size());
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
    return digits;
}

/// What people write for a number: "stereo", "yes"; else empty.
std::string_view numberCalled(std::string_view word, Unit unit)
{
    constexpr struct {
        Unit unit;
        std::string_view word, number;
    } s_Words[] = {
        {Unit::Channels, "mono", "1"}, {Unit::Channels, "stereo", "2"}, {Unit::Flag, "true", "1"},
        {Unit::Flag, "yes", "1"},      {Unit::Flag, "on", "1"},         {Unit::Flag, "false", "0"},
        {Unit::Flag, "no", "0"},       {Unit::Flag, "off", "0"},
    };
    for (const auto &row : s_Words)
        if (row.unit == unit && equalIgnoringCase(word, row.word)) return row.number;
    return {};
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
    if (const auto level = levelMeant(number.place.element, number.attribute.value());
        level && number.row.name == std::string_view("LEVEL"))
        return {level->advice, level->coded};
    if (const std::string_view value = numberCalled(number.attribute.value(), number.row.unit);
        !value.empty())
        return {fmt::format("write {}", value), std::string(value)};
    if (number.hasDigits() && std::ranges::all_of(rest, isSpace))
        return {"remove the blank after it", read};
    if (equalIgnoringCase(rest, "p") && std::string_view(number.row.name).ends_with("WIDTH"))
        return {fmt::format("{} counts lines: write it as the height, and the width here",
                            number.attribute.value()),
                {}};
    if (number.hasDigits() && isUnit(rest))
        return {fmt::format("leave out \"{}\", which follows the number", excerpt(rest)), read};
    if (const std::string count = number.hasDigits() ? channelCount(number) : ""; !count.empty())
        return {fmt::format("{} is {} channels: write {}", number.attribute.value(), count, count),
                count};
    if (const std::string whole =
            takesSuffixes(number.row.unit) ? wholeNumber(number.attribute.value()) : "";
        !whole.empty())
        return {fmt::format("write {}", whole), whole};
    return {takesSuffixes(number.row.unit) ? "write a whole number; K is 1000, M is 1000000"
                                           : "write a whole number",
            {}};
}

/// Both sizes of a picture in place of its width. False: it is none of such.
bool reportPair(const WrittenNumber &number, const std::string &problem, Report &report)
{
    const std::string_view name = number.row.name;
    const std::string_view bound = name.substr(0, 3);
    const std::string pair =
        name.ends_with("WIDTH") ? sizePair(number.attribute.value(), bound) : "";
    if (pair.empty()) return false;
    report.add(Fault::NumberStops, number.place.element, number.attribute, problem,
               "write " + pair);
    if (!number.place.element.attribute((std::string(bound) + "HEIGHT").c_str()))
        report.mendWhole(number.place.element, number.attribute, pair);
    return true;
}

void reportStop(const WrittenNumber &number, Report &report)
{
    const char c = number.rest.front();
    const std::string read =
        number.hasDigits() ? fmt::format("and gives {}", number.made.value) : "and gives 0";
    const bool isWord = !numberCalled(number.attribute.value(), number.row.unit).empty();
    if (!takesSuffixes(number.row.unit) && suffixFactor(c) != 0 && !isWord)
        return report.add(Fault::SuffixOnDecimal, number.place.element, number.attribute,
                          fmt::format("{} ends at '{}' {}: this attribute takes no K or M",
                                      shown(number.attribute), c, read),
                          "write the number out");
    const std::string problem = fmt::format("{} ends at '{}' {}", shown(number.attribute),
                                            excerpt(number.rest.substr(0, 1)), read);
    if (reportPair(number, problem, report)) return;
    const Mend mend = mendOfStop(number);
    report.add(Fault::NumberStops, number.place.element, number.attribute, problem, mend.advice);
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

std::string sizePair(std::string_view text, std::string_view bound)
{
    const std::size_t between = std::min(text.find_first_of("xX*"), text.size());
    const std::string_view width = text.substr(0, between);
    const std::string_view height = text.substr(std::min(between + 1, text.size()));
    for (const std::string_view size : {width, height})
        if (size.empty() || size.size() > 5 ||
            size.find_first_not_of("0123456789") != std::string_view::npos)
            return {};
    return fmt::format("{0}WIDTH=\"{1}\" {0}HEIGHT=\"{2}\"", bound, width, height);
}

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

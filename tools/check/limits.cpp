// Limits that do nothing, turn everything away, or are written in another scale.
#include "tools/check/checks.h"

#include "cmdline/limit_slots.h"
#include "profile/attribute_value.h"
#include "profile/sample_rates.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fmt/format.h>
#include <iterator>
#include <string>
#include <vector>

namespace vornak::tool {
namespace {

/// The number that the loader reads from an attribute, sample rates as written; 0 without one.
int numberIn(pugi::xml_node element, const char *name)
{
    return readNumber(findAttribute(name)->unit, element.attribute(name).value()).value;
}

void checkLevel(pugi::xml_node element, Report &report)
{
    const pugi::xml_attribute attribute = element.attribute("LEVEL");
    const int level = numberIn(element, "LEVEL");
    if (level <= 0) return;
    if (codecOf(element) == "mpeg2video"_codec)
        return report.add(Fault::LevelsRunBackwards, element, attribute,
                          fmt::format("{}: the levels of MPEG-2 run backwards (low 10, main 8, "
                                      "high 1440 6, high 4), so this takes the higher ones too",
                                      shown(attribute)),
                          "limit the size in its place");
    const LevelScale *scale = levelScaleOf(codecOf(element).value_or(kAnyCodec));
    if (!scale || std::ranges::find(scale->levels, level) != scale->levels.end()) return;
    const std::optional<LevelMeant> meant = levelMeant(element, attribute.value());
    report.add(Fault::LevelScale, element, attribute,
               fmt::format("{} is read as {}, which is no level of {}", shown(attribute), level,
                           codecText(scale->codecId)),
               meant ? meant->advice
                     : fmt::format("the levels of {} are {}", codecText(scale->codecId),
                                   fmt::join(scale->levels, ", ")));
}

void checkWildcard(pugi::xml_node element, unsigned elements, Report &report)
{
    if (codecOf(element) != kAnyCodec) return;
    std::vector<const char *> ignored;
    for (const AttributeRow &row : attributeRows())
        if (row.isLimit && (row.elements & elements) != 0 && element.attribute(row.name))
            ignored.push_back(row.name);
    if (!ignored.empty())
        report.add(Fault::WildcardLimits, element, element.attribute(ignored.front()),
                   fmt::format("the wildcard takes every source, whatever its {} say",
                               fmt::join(ignored, ", ")),
                   "remove them, or name the codec");
}

/// Whether both sizes of a pair are set.
bool isPair(pugi::xml_node element, const char *width, const char *height)
{
    return numberIn(element, width) > 0 && numberIn(element, height) > 0;
}

void checkSizePair(pugi::xml_node element, const char *width, const char *height, Report &report)
{
    const bool hasWidth = numberIn(element, width) > 0;
    if (hasWidth == (numberIn(element, height) > 0)) return;
    const char *given = hasWidth ? width : height;
    const char *lacking = hasWidth ? height : width;
    report.add(Fault::HalfSizePair, element, element.attribute(given),
               fmt::format("{} does nothing without {}", given, lacking),
               fmt::format("add {}", lacking));
}

/// @param tolerance  how far the bounds may lie apart, for bounds that are to be met
void checkOrder(int minimum, int maximum, int tolerance, const char *minName, const char *maxName,
                pugi::xml_node element, Report &report)
{
    if (minimum <= 0 || maximum <= 0) return;
    const std::int64_t apart = std::int64_t{minimum} - maximum;
    const bool fails = tolerance > 0 ? std::abs(apart) > 2 * std::int64_t{tolerance} : apart > 0;
    if (!fails) return;
    report.add(Fault::MinAboveMax, element, element.attribute(minName),
               tolerance > 0
                   ? fmt::format("{} {} and {} {} lie further apart than TOLERANCE bridges: no "
                                 "source is close to both",
                                 minName, minimum, maxName, maximum)
                   : fmt::format("{} {} lies above {} {}: no source fits", minName, minimum,
                                 maxName, maximum),
               tolerance > 0 ? "with TOLERANCE, set one pair of sizes" : "exchange the two");
}

/// What to write for a rate that is none of the standard ones.
std::string rateAdvice(int rate)
{
    if (rate <= 0) return "remove it";
    if (std::ranges::find(s_StandardSampleRates, rate * std::int64_t{1000}) !=
        std::end(s_StandardSampleRates))
        return fmt::format("write {}000", rate);
    const auto *const above = std::ranges::upper_bound(s_StandardSampleRates, rate);
    if (above == std::begin(s_StandardSampleRates) || above == std::end(s_StandardSampleRates))
        return "write the rate in Hz, such as 44100";
    return fmt::format("write one of the standard rates, such as {} or {}", above[-1], *above);
}

void checkSnapped(int limit, const char *name, pugi::xml_node element, Report &report)
{
    const pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) return;
    const int read = numberIn(element, name);
    if (read == limit) return;
    report.add(Fault::FrequencySnapped, element, attribute,
               fmt::format("{} is read as {} and becomes {} Hz, the nearest standard rate",
                           shown(attribute), read, limit),
               rateAdvice(read));
}

/// The order of two numbers as they are written.
void checkWritten(pugi::xml_node element, const char *minName, const char *maxName, int tolerance,
                  Report &report)
{
    checkOrder(numberIn(element, minName), numberIn(element, maxName), tolerance, minName, maxName,
               element, report);
}

/// The order of the limits of one property. Sizes and sample rates have checks of their own.
void checkPairs(const auto &limits, pugi::xml_node element, Report &report)
{
    for (const auto &[least, leastSlot] : limits) {
        const Unit unit = least.first->unit;
        if (least.first->bound != Bound::AtLeast || unit == Unit::Pixels ||
            unit == Unit::SampleRate)
            continue;
        for (const auto &[most, mostSlot] : limits)
            if (most.first->bound == Bound::AtMost && most.first->bounded == least.first->bounded)
                checkWritten(element, least.first->attribute, most.first->attribute, 0, report);
    }
}

void checkSizes(pugi::xml_node element, Report &report)
{
    checkSizePair(element, "MAXWIDTH", "MAXHEIGHT", report);
    checkSizePair(element, "MINWIDTH", "MINHEIGHT", report);
    const bool hasMax = isPair(element, "MAXWIDTH", "MAXHEIGHT");
    const bool hasMin = isPair(element, "MINWIDTH", "MINHEIGHT");
    const int tolerance = numberIn(element, "TOLERANCE");
    if (tolerance > 0 && !hasMax && !hasMin)
        report.add(Fault::ToleranceWithoutSizes, element, element.attribute("TOLERANCE"),
                   "TOLERANCE does nothing without a pair of sizes",
                   "add MAXWIDTH and MAXHEIGHT, or remove it");
    if (!hasMax || !hasMin) return;
    checkWritten(element, "MINWIDTH", "MAXWIDTH", tolerance, report);
    checkWritten(element, "MINHEIGHT", "MAXHEIGHT", tolerance, report);
}

} // namespace

std::optional<LevelMeant> levelMeant(pugi::xml_node element, const char *text)
{
    const LevelScale *scale = levelScaleOf(codecOf(element).value_or(kAnyCodec));
    if (!scale) return std::nullopt;
    if (*text == 'L' || *text == 'l') ++text;
    double level = std::strtod(text, nullptr);
    if (level >= 10) level /= 10;
    const auto coded = std::lround(std::clamp(level, 0.0, 99.0) * scale->factor);
    if (std::ranges::find(scale->levels, coded) == scale->levels.end()) return std::nullopt;
    return LevelMeant{std::to_string(coded),
                      fmt::format("write {} for level {:.1f}", coded,
                                  static_cast<double>(coded) / scale->factor)};
}

void checkLimits(const ElementPlace &place, Report &report)
{
    if ((place.row.element & (kVcodec | kAcodec)) == 0) return;
    checkWildcard(place.element, place.row.element, report);
    checkLevel(place.element, report);
    if (codecOf(place.element) == kAnyCodec) return; // whose limits are ignored, as is said
    if (place.row.element == kAcodec) return checkPairs(s_AudioLimits, place.element, report);
    checkPairs(s_VideoLimits, place.element, report);
    checkSizes(place.element, report);
}

void checkFrequencies(const Place &place, Report &report)
{
    const AudioRule &rule = *place.audio.record;
    const pugi::xml_node element = place.audio.element;
    checkSnapped(rule.maxSampleRate, "MAXFREQUENCY", element, report);
    checkSnapped(rule.minSampleRate, "MINFREQUENCY", element, report);
    checkOrder(rule.minSampleRate, rule.maxSampleRate, 0, "MINFREQUENCY", "MAXFREQUENCY", element,
               report);
}

} // namespace vornak::tool

#include "tools/profile/rule_words.h"

#include "base/media_ids.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/rule_text.h"
#include "tools/profile/spoken_names.h"

#include <algorithm>
#include <utility>

namespace vornak::tool {
namespace {

/// A number in thousandths, as short as it can be: "44.1" for 44100.
std::string inThousands(int number)
{
    return fmt::format("{:g}", number / 1000.0);
}

/// A value of a limit, and what it is counted in.
struct Quantity {
    std::string number, unit;
};

Quantity quantityOf(Unit unit, int value)
{
    switch (unit) {
    case Unit::Channels:
        return {std::to_string(value), value == 1 ? " channel" : " channels"};
    case Unit::SampleRate:
        return {inThousands(value), " kHz"};
    case Unit::BitRate:
        return value < 1'000'000 ? Quantity{inThousands(value), " kbit/s"}
                                 : Quantity{fmt::format("{:g}", value / 1e6), " Mbit/s"};
    case Unit::Pixels:
        return {std::to_string(value), " pixels"};
    default:
        return {std::to_string(value), ""};
    }
}

/// What a rule takes of something that can be measured.
struct Measure {
    Quantity least, most; ///< empty: no end
};

/// A pair of sizes. Where one is beyond all pictures, or below, it is the other that counts, unless
/// both are to be met.
Quantity sizeOf(int width, int height, bool isMet)
{
    constexpr int kBeyond = 65535;
    if (width <= 0 || height <= 0) return {}; // one alone limits nothing
    const bool isWidth = isMet || (width > 1 && width < kBeyond);
    const bool isHeight = isMet || (height > 1 && height < kBeyond);
    if (!isWidth && !isHeight) return {};
    if (!isWidth) return {std::to_string(height), " pixels in height"};
    if (!isHeight) return {std::to_string(width), " pixels in width"};
    return {fmt::format("{}×{}", width, height), ""};
}

/// The phrases of a rule.
struct Phrases {
    Words profiles, upTo, others, exceptions;
};

template <class Rule, class Source>
void addBound(const Property<Rule, Source> &property, const Rule &rule, Phrases &phrases)
{
    const int limit = property.in(rule);
    if (property.unit == Unit::ExceptionBits) {
        for (const std::string &name : playExceptionTexts(limit))
            phrases.exceptions.push_back(spokenException(name));
    } else if (limit <= 0) {
        return;
    } else if (property.unit == Unit::ProfileBits && limit != allProfilesOf(idOf(rule))) {
        for (const std::string &name : profileTexts(limit, idOf(rule)))
            phrases.profiles.push_back(spokenProfile(name));
    }
}

/// The other end of what a property bounds; null: it has none.
template <class Rule, class Source>
const Property<Rule, Source> *otherEnd(const Property<Rule, Source> &property, const Rule &rule)
{
    for (const auto *other : shownOf(rule))
        if (other != &property && other->bounded == property.bounded && property.bounded)
            return other;
    return nullptr;
}

/// Upper ends are told together, ranges apart.
void addMeasure(const Measure &measure, Phrases &phrases)
{
    const auto &[least, most] = measure;
    if (!least.number.empty() && !most.number.empty() && least.unit == most.unit) {
        phrases.others.push_back(
            least.number == most.number
                ? fmt::format("exactly {}{}", most.number, most.unit)
                : fmt::format("{} to {}{}", least.number, most.number, most.unit));
        return;
    }
    if (!most.number.empty()) phrases.upTo.push_back(most.number + most.unit);
    if (!least.number.empty())
        phrases.others.push_back(fmt::format("at least {}{}", least.number, least.unit));
}

template <class Rule>
void addSizes(const Rule &rule, Phrases &phrases)
{
    Measure size;
    int tolerance = 0;
    for (const auto &row : comparisonsOf(rule)) {
        if (!row.second) continue;
        tolerance = row.closeness->in(rule);
        (row.first->bound == Bound::AtMost ? size.most : size.least) =
            sizeOf(row.first->in(rule), row.second->in(rule), tolerance > 0);
    }
    if (tolerance <= 0) return addMeasure(size, phrases);
    for (const Quantity &pair : {size.most, size.least}) // which are met, not kept
        if (!pair.number.empty())
            addNew(phrases.others,
                   fmt::format("within {} pixels of {}{}", tolerance, pair.number, pair.unit));
}

/// The levels that a limit takes, as people write them.
void addLevel(int codec, int limit, Phrases &phrases)
{
    if (limit <= 0) return;
    Words names;
    for (const NamedLevel &level : levelNamesOf(codec))
        if (level.coded <= limit) names.emplace_back(level.name);
    if (!names.empty()) return phrases.others.push_back("of level " + listed(names, " or "));
    const LevelScale *scale = levelScaleOf(codec);
    if (codec == "av1"_codec)
        return phrases.upTo.push_back(fmt::format("level {:.1f}", writtenAv1Level(limit) / 10.0));
    if (!scale) return phrases.upTo.push_back(fmt::format("level {}", limit));
    const auto above = std::ranges::upper_bound(scale->levels, limit);
    phrases.upTo.push_back(
        above == scale->levels.begin() ? fmt::format("level {} as it is coded", limit)
        : above[-1] < scale->factor    ? "level 1b" // the one that is coded below 1.0
                                    : fmt::format("level {:.1f}", above[-1] * 1.0 / scale->factor));
}

/// All that a rule asks, each row once, the two ends of one thing together.
template <class Rule>
Phrases phrasesOf(const Rule &rule)
{
    Phrases phrases;
    bool hasSizes = false;
    for (const auto *property : shownOf(rule)) {
        if (property->unit == Unit::Pixels) {
            if (!std::exchange(hasSizes, true)) addSizes(rule, phrases);
        } else if (property->unit == Unit::Level) {
            addLevel(idOf(rule), property->in(rule), phrases);
        } else if (property->bound == Bound::AtMost || property->bound == Bound::AtLeast) {
            const auto *other = otherEnd(*property, rule);
            if (other && other < property) continue; // said with the first of the two
            Measure measure;
            for (const auto *end : {property, other})
                if (end && end->in(rule) > (end->bound == Bound::AtLeast ? 1 : 0))
                    (end->bound == Bound::AtMost ? measure.most : measure.least) =
                        quantityOf(end->unit, end->in(rule));
            addMeasure(measure, phrases);
        } else if (property->bound != Bound::None) {
            addBound(*property, rule, phrases);
        }
    }
    return phrases;
}

template <class Rule>
std::string wordsFor(const Rule &rule, const char *any)
{
    const bool isAny = idOf(rule) == kAnyCodec; // which heeds no limits
    std::string text = isAny ? any : spokenCodec(idOf(rule));
    const Phrases phrases = isAny ? Phrases() : phrasesOf(rule);
    Words parts;
    if (!phrases.profiles.empty()) text += ' ' + listed(phrases.profiles, " or ");
    if (!phrases.upTo.empty()) parts.push_back("up to " + listed(phrases.upTo, " and "));
    parts.insert(parts.end(), phrases.others.begin(), phrases.others.end());
    if (!phrases.exceptions.empty())
        parts.push_back("but not " + listed(phrases.exceptions, " or "));
    for (const std::string &part : parts) text += (&part == &parts.front() ? " " : ", ") + part;
    return text + (isForbidden(rule) ? ", sent as it is or not at all" : "");
}

} // namespace

std::string listed(const Words &words, const char *last)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? last : ", ") + words[i];
    return text;
}

void addNew(Words &words, const std::string &word)
{
    if (std::ranges::find(words, word) == words.end()) words.push_back(word);
}

std::string ruleWords(const VideoRule &rule, const char *any)
{
    return wordsFor(rule, any);
}

std::string ruleWords(const AudioRule &rule, const char *any)
{
    return wordsFor(rule, any);
}

} // namespace vornak::tool

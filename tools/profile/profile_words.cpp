#include "tools/profile/profile_words.h"

#include "tools/profile/coded_levels.h"
#include "tools/profile/profile_session.h"
#include "tools/profile/rule_text.h"
#include "tools/profile/spoken_names.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/terminal/wrapped_text.h"

#include <algorithm>
#include <utility>

namespace vornak::tool {
namespace {

using Words = std::vector<std::string>;

/// "a", "a or b", "a, b or c".
std::string listed(const Words &words, const char *last)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? last : ", ") + words[i];
    return text;
}

std::string capitalised(std::string sentence)
{
    if (sentence.starts_with("any")) sentence[0] = 'A'; // names keep their letters
    return sentence;
}

void addNew(Words &words, const std::string &word)
{
    if (std::ranges::find(words, word) == words.end()) words.push_back(word);
}

/// A number in thousandths, as short as it can be: "44.1" for 44100.
std::string inThousands(int number)
{
    return fmt::format("{:g}", number / 1000.0);
}

/// A value of a limit, and what it is counted in.
struct Quantity {
    std::string number, unit;
};

Quantity quantityOf(Unit unit, int value, int codec)
{
    switch (unit) {
    case Unit::Level: {
        const LevelScale *scale = levelScaleOf(codec);
        return {scale ? fmt::format("level {:.1f}", value * 1.0 / scale->factor)
                      : fmt::format("level {}", value),
                ""};
    }
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

/// A pair of sizes. Where one is beyond all pictures, or below, it is the other that counts.
Quantity sizeOf(int width, int height)
{
    constexpr int kBeyond = 65535;
    if (width <= 0 || height <= 0) return {}; // one alone limits nothing
    const bool isWidth = width > 1 && width<kBeyond, isHeight = height> 1 && height < kBeyond;
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
        const Quantity pair = sizeOf(row.first->in(rule), row.second->in(rule));
        (row.first->bound == Bound::AtMost ? size.most : size.least) = pair;
        tolerance = std::max(tolerance, row.closeness->in(rule));
    }
    if (tolerance <= 0) return addMeasure(size, phrases);
    for (const Quantity &pair : {size.most, size.least}) // which are met, not kept
        if (!pair.number.empty())
            addNew(phrases.others,
                   fmt::format("within {} pixels of {}{}", tolerance, pair.number, pair.unit));
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
        } else if (property->bound == Bound::AtMost || property->bound == Bound::AtLeast) {
            const auto *other = otherEnd(*property, rule);
            if (other && other < property) continue; // said with the first of the two
            Measure measure;
            for (const auto *end : {property, other})
                if (end && end->in(rule) > (end->bound == Bound::AtLeast ? 1 : 0))
                    (end->bound == Bound::AtMost ? measure.most : measure.least) =
                        quantityOf(end->unit, end->in(rule), idOf(rule));
            addMeasure(measure, phrases);
        } else if (property->bound != Bound::None) {
            addBound(*property, rule, phrases);
        }
    }
    return phrases;
}

bool isForbidden(const VideoRule &rule)
{
    return rule.noTranscode == 1;
}
bool isForbidden(const AudioRule &)
{
    return false; // where it has no effect
}

/// "H.264 Main or High, up to level 4.1, 1920×1080 and 25 Mbit/s, but not interlaced".
template <class Rule>
std::string ruleText(const Rule &rule)
{
    if (idOf(rule) == kAnyCodec) return "any other codec"; // which heeds no limits
    std::string text = spokenCodec(idOf(rule));
    const Phrases phrases = phrasesOf(rule);
    Words parts;
    if (!phrases.profiles.empty()) text += ' ' + listed(phrases.profiles, " or ");
    if (!phrases.upTo.empty()) parts.push_back("up to " + listed(phrases.upTo, " and "));
    parts.insert(parts.end(), phrases.others.begin(), phrases.others.end());
    if (!phrases.exceptions.empty())
        parts.push_back("but not " + listed(phrases.exceptions, " or "));
    if (isForbidden(rule)) parts.emplace_back("sent as it is or not at all");
    for (const std::string &part : parts) text += (&part == &parts.front() ? " " : ", ") + part;
    return text;
}

std::string containersText(const AudioRule &rule)
{
    Words names;
    for (const ContainerEntry &entry : recordsOf(rule.pFormatTable))
        addNew(names, spokenContainer(entry.formatId));
    if (names.empty()) return "no container";
    return names.size() == 1 && names.front() == spokenContainer(kAnyContainer)
               ? "any container"
               : listed(names, " or ");
}

std::string soundsIn(const AudioRule &rule)
{
    return containersText(rule);
}

/// The sound of a video rule: "AC-3 up to 6 channels, in MP4 or MPEG-TS; ...".
std::string soundsOf(const AudioRule *table);

std::string soundsIn(const VideoRule &rule)
{
    return soundsOf(rule.pAudioTable);
}

/// Rules that share what belongs to them are told together, whatever stands between them.
struct Group {
    Words rules;
    std::string inner;
};

template <class Rule>
std::vector<Group> groupsOf(const Rule *table)
{
    std::vector<Group> groups;
    for (const Rule &rule : recordsOf(table)) {
        const std::string inner = soundsIn(rule);
        auto group = std::ranges::find(groups, inner, &Group::inner);
        if (group == groups.end()) group = groups.insert(group, {{}, inner});
        const bool isAll = &rule == table && idOf(rule) == kAnyCodec;
        addNew(group->rules, isAll ? "any codec" : ruleText(rule));
    }
    return groups;
}

std::string soundsOf(const AudioRule *table)
{
    Words clauses;
    for (const Group &group : groupsOf(table))
        clauses.push_back(
            capitalised(fmt::format("{}, in {}", fmt::join(group.rules, "; "), group.inner)));
    return clauses.empty() ? "none" : fmt::format("{}", fmt::join(clauses, ". "));
}

/// What a table's first rule makes; empty: it forbids that, or says nothing.
std::string targetOf(const AudioRule *table)
{
    const auto rules = recordsOf(table);
    if (rules.empty() || rules.front().aCodecId == kAnyCodec) return {};
    const auto entries = recordsOf(rules.front().pFormatTable);
    if (entries.empty() || entries.front().noTranscode == 1) return {};
    return fmt::format("{} in {}", spokenCodec(rules.front().aCodecId),
                       spokenContainer(entries.front().formatId));
}
std::string targetOf(const VideoRule *table)
{
    const auto rules = recordsOf(table);
    if (rules.empty() || rules.front().vCodecId == kAnyCodec || isForbidden(rules.front()))
        return {};
    const std::string sound = targetOf(rules.front().pAudioTable);
    if (sound.empty()) return {};
    return fmt::format("{} with {}", spokenCodec(rules.front().vCodecId), sound);
}

class Page {
public:
    void add(const std::string &paragraph)
    {
        constexpr std::size_t kWidth = 80;
        text_ += '\n' + wrappedText(paragraph, kWidth, 0, 0) + '\n';
    }

    void addMusic(const AudioRule *table)
    {
        if (!table) return add("Music: none is sent.");
        add("Music: " + soundsOf(table) + ".");
        addTarget("music", targetOf(table));
    }

    void addVideos(const VideoRule *table)
    {
        if (!table) return add("Video: none is sent.");
        bool hasExceptions = false;
        for (const Group &group : groupsOf(table))
            add(fmt::format("Video: {}. Its sound: {}.", fmt::join(group.rules, "; "),
                            group.inner));
        for (const VideoRule &rule : recordsOf(table))
            hasExceptions = hasExceptions || rule.playException != 0;
        if (hasExceptions)
            add("A video that a list says \"but not\" of is taken all the same if it has an oddity "
                "that the list doesn't name.");
        add("A video whose picture is taken and whose sound isn't keeps the picture: the sound "
            "becomes the first that is named with it.");
        addTarget("video", targetOf(table));
    }

    std::string take(const std::string &name)
    {
        return fmt::format("{}{}{}\n{}", colours().name, name, colours().reset, text_);
    }

private:
    void addTarget(const char *what, const std::string &target)
    {
        add(target.empty() ? fmt::format("Other {} isn't sent.", what)
                           : fmt::format("Other {} becomes {}.", what, target));
    }

    std::string text_;
};

} // namespace

std::string wordsOf(const ProfileSession &session)
{
    const TRANSCODE_DEVICE_PROFILE_ST &profile = session.profile();
    Page page;
    page.addVideos(profile.pVideoTable);
    page.addMusic(profile.pAudioTable);
    return page.take(printable(profile.deviceName));
}

} // namespace vornak::tool

#include "tools/profile/profile_words.h"

#include "tools/profile/profile_session.h"
#include "tools/profile/rule_words.h"
#include "tools/profile/spoken_names.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/terminal/wrapped_text.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>
#include <span>
#include <utility>

namespace vornak::tool {
namespace {

std::string capitalised(std::string sentence)
{
    if (sentence.starts_with("any")) sentence[0] = 'A'; // names keep their letters
    return sentence;
}

/// The rules that a stream can get to: none stands behind the wildcard.
template <class Rule>
std::span<const Rule> reachable(const Rule *table)
{
    const auto rules = recordsOf(table);
    const auto any =
        std::ranges::find(rules, kAnyCodec, [](const Rule &rule) { return idOf(rule); });
    return rules.first(any == rules.end() ? rules.size() : any - rules.begin() + 1);
}

template <class Rule>
bool takesAll(const Rule *table)
{
    const auto rules = reachable(table);
    return !rules.empty() && idOf(rules.back()) == kAnyCodec;
}

const ContainerEntry *firstEntry(const AudioRule &rule)
{
    return recordAt<ContainerEntry>(rule.pFormatTable, 0);
}

bool takesAllContainers(const AudioRule &rule)
{
    return std::ranges::count(recordsOf<ContainerEntry>(rule.pFormatTable), kAnyContainer,
                              &ContainerEntry::formatId) > 0;
}

/// Whether nothing may be transcoded into the rule's first container: one flag alone forbids to
/// remux into it, and no more.
bool isNeverMade(const AudioRule &rule)
{
    const ContainerEntry *entry = firstEntry(rule);
    return entry && entry->noTranscode == 1 && entry->nonSeekable == 1;
}

bool refusesOthers(const AudioRule *table)
{
    return isNeverMade(recordsOf(table).front());
}

/// What becomes of a stream that the rule takes in a container that it doesn't.
enum class Elsewhere { Remuxed, Converted, Refused, Nowhere };

Elsewhere elsewhere(const AudioRule &rule, const AudioRule *table)
{
    const ContainerEntry *entry = firstEntry(rule);
    if (!entry || takesAllContainers(rule)) return Elsewhere::Nowhere;
    if (entry->noTranscode != 1) return Elsewhere::Remuxed;
    if (refusesOthers(table)) return Elsewhere::Refused;
    // nothing is encoded for a wildcard: what it makes is a copy
    return idOf(*table) == kAnyCodec ? Elsewhere::Remuxed : Elsewhere::Converted;
}

/// "MP4 or any other container"; what stands behind those that take any is never chosen.
std::string containersText(const AudioRule &rule)
{
    Words names;
    for (const ContainerEntry &entry : recordsOf<ContainerEntry>(rule.pFormatTable)) {
        addNew(names, spokenContainer(entry.formatId));
        if (entry.formatId == kAnyContainer) break;
    }
    if (names.empty()) return "no container";
    return names.front() == spokenContainer(kAnyContainer) ? "any container"
                                                           : listed(names, " or ");
}

std::string innerText(const AudioRule &rule, const AudioRule *table)
{
    const Elsewhere end = elsewhere(rule, table);
    return containersText(rule) + (end == Elsewhere::Converted ? ", else converted"
                                   : end == Elsewhere::Refused ? ", else not sent"
                                                               : "");
}

/// The sound of a video rule: "AC-3 up to 6 channels, in MP4 or MPEG-TS. ...".
std::string soundsOf(const AudioRule *table);

std::string innerText(const VideoRule &rule, const VideoRule *)
{
    const AudioRule *sounds = rule.pAudioTable;
    const bool refuses = !recordsOf(sounds).empty() && !takesAll(sounds) && refusesOthers(sounds);
    return soundsOf(sounds) +
           (refuses && !isForbidden(rule) ? ". With other sound it isn't sent" : "");
}

/// Rules that share what belongs to them, and that the order of the page leaves as they are.
template <class Rule>
struct Group {
    std::vector<const Rule *> rules;
    std::string inner;

    bool hasCodecOf(const Rule &rule) const
    {
        return idOf(rule) == kAnyCodec ||
               std::ranges::any_of(rules, [&](auto *one) { return idOf(*one) == idOf(rule); });
    }
    std::string text(const Rule *table) const
    {
        Words words;
        for (const Rule *rule : rules)
            addNew(words, ruleWords(*rule, rule == table ? "any codec" : "anything else"));
        return fmt::format("{}", fmt::join(words, "; "));
    }
};

/// A rule is told with those before it unless one in between may take what it would.
template <class Rule>
std::vector<Group<Rule>> groupsOf(const Rule *table)
{
    std::vector<Group<Rule>> groups;
    for (const Rule &rule : reachable(table)) {
        const std::string inner = innerText(rule, table);
        auto group = groups.rbegin();
        while (group != groups.rend() && group->inner != inner && !group->hasCodecOf(rule)) ++group;
        if (group != groups.rend() && group->inner == inner)
            group->rules.push_back(&rule);
        else
            groups.push_back({{&rule}, inner});
    }
    return groups;
}

/// Whether a stream may fit two rules that do different things with it.
template <class Rule>
bool isOrderSaid(const Rule *table)
{
    const auto groups = groupsOf(table);
    std::map<int, std::pair<const Group<Rule> *, bool>> doings; // by codec
    for (const auto &group : groups)
        for (const Rule *rule : group.rules) {
            const std::pair doing{&group, isForbidden(*rule)};
            if (doings.try_emplace(idOf(*rule), doing).first->second != doing) return true;
        }
    return false;
}

std::string soundsOf(const AudioRule *table)
{
    Words clauses;
    for (const auto &group : groupsOf(table))
        clauses.push_back(capitalised(fmt::format("{}, in {}", group.text(table), group.inner)));
    return clauses.empty() ? "none" : fmt::format("{}", fmt::join(clauses, ". "));
}

std::string targetContainer(const AudioRule &rule)
{
    const ContainerEntry *entry = firstEntry(rule);
    return !entry                             ? "no container"
           : entry->formatId == kAnyContainer ? "the container that it is in"
                                              : spokenContainer(entry->formatId);
}

/// What becomes of music that no rule takes.
std::string otherMusic(const AudioRule *table)
{
    const bool converts = std::ranges::any_of(reachable(table), [&](const AudioRule &rule) {
        return elsewhere(rule, table) == Elsewhere::Converted;
    });
    if (takesAll(table) && !converts) return {};
    if (refusesOthers(table)) return "Other music isn't sent.";
    return fmt::format("Other music is converted to {} in {}.", spokenCodec(idOf(*table)),
                       targetContainer(*table));
}

/// What becomes of a video that no rule takes: its sound is looked for in the first rule.
std::string otherVideo(const VideoRule *table)
{
    if (takesAll(table)) return {};
    const AudioRule *sounds = table->pAudioTable;
    if (recordsOf(sounds).empty() && !isForbidden(*table))
        return "Nothing is known about other video.";
    Words kept, containers;
    for (const AudioRule &rule : reachable(sounds)) {
        if (isNeverMade(rule)) continue;
        kept.push_back(ruleWords(rule));
        addNew(containers, targetContainer(rule));
    }
    if (isForbidden(*table) || kept.empty()) return "Other video isn't sent.";
    const bool keepsAll = kept.size() == reachable(sounds).size();
    const std::string container =
        containers.size() == 1 ? containers.front() : "the first container named with its sound";
    const std::string converted =
        fmt::format("Other video is converted to {} in {}, with its own sound",
                    spokenCodec(idOf(*table)), container);
    if (takesAll(sounds) && keepsAll) return converted + '.';
    return fmt::format("{} where {}; {}.", converted,
                       keepsAll ? "the first list takes that" : "that is " + listed(kept, " or "),
                       refusesOthers(sounds) ? "with other sound it isn't sent"
                                             : fmt::format("other sound is converted to {}",
                                                           spokenCodec(idOf(*sounds))));
}

/// What holds of several rules, and is said once.
struct Notes {
    bool isOrdered = false;  ///< the first that fits counts
    bool isExcepted = false; ///< a rule names what it doesn't take
    bool converts = false;   ///< the sound of a picture that is kept
    bool remuxes = false;
    bool isUnknown = false;    ///< what comes of it
    bool hasOtherwise = false; ///< a list says of itself what of these doesn't hold for it

    void add(const AudioRule *table)
    {
        isOrdered = isOrdered || isOrderSaid(table);
        isUnknown = isUnknown || recordsOf(table).empty();
        for (const AudioRule &rule : reachable(table)) {
            const Elsewhere end = elsewhere(rule, table);
            isUnknown = isUnknown || !firstEntry(rule);
            remuxes = remuxes || end == Elsewhere::Remuxed;
            converts = converts || end == Elsewhere::Converted;
            hasOtherwise = hasOtherwise || end == Elsewhere::Converted || end == Elsewhere::Refused;
        }
    }
    void add(const VideoRule &rule)
    {
        const AudioRule *sounds = rule.pAudioTable;
        isExcepted = isExcepted || (idOf(rule) != kAnyCodec && rule.playException != 0);
        if (isForbidden(rule)) {
            isOrdered = isOrdered || isOrderSaid(sounds);
            hasOtherwise = true;
            return;
        }
        add(sounds);
        if (recordsOf(sounds).empty() || takesAll(sounds)) return;
        (refusesOthers(sounds) ? hasOtherwise : converts) = true;
    }
};

class Page {
public:
    void addMusic(const AudioRule *table)
    {
        if (recordsOf(table).empty()) return addUnserved("Music");
        add("Music: " + soundsOf(table) + ".");
        Notes notes;
        notes.add(table);
        notes.converts = false; // of which the last sentence tells
        addNotes(notes);
        add(otherMusic(table));
    }

    void addVideos(const VideoRule *table)
    {
        if (recordsOf(table).empty()) return addUnserved("Video");
        for (const auto &group : groupsOf(table))
            add(fmt::format("Video: {}. Its sound: {}.", group.text(table), group.inner));
        Notes notes;
        notes.isOrdered = isOrderSaid(table);
        for (const VideoRule &rule : reachable(table)) notes.add(rule);
        addNotes(notes);
        add(otherVideo(table));
    }

    std::string take(const std::string &name)
    {
        return fmt::format("{}{}{}\n{}", colours().name, name, colours().reset, text_);
    }

private:
    void add(const std::string &paragraph)
    {
        constexpr std::size_t kWidth = 80;
        if (!paragraph.empty()) text_ += '\n' + wrappedText(paragraph, kWidth, 0, 0) + '\n';
    }

    void addUnserved(const char *section)
    {
        add(fmt::format("{}: no rule serves it, so nothing is known about such files.", section));
    }

    void addNotes(const Notes &notes)
    {
        const char *otherwise = notes.hasOtherwise ? ", unless its list says otherwise" : "";
        if (notes.isOrdered)
            add("Of several that a stream fits, the first counts, whatever the container.");
        if (notes.isExcepted)
            add("A video that a list says \"but not\" of is taken all the same if it has an oddity "
                "that the list doesn't name.");
        if (notes.converts)
            add(fmt::format("A video whose picture is taken and whose sound isn't keeps the "
                            "picture: the sound is converted to the first that is named with "
                            "it{}.",
                            otherwise));
        if (notes.remuxes)
            add(fmt::format("What is taken, but in another container, is put into the first that "
                            "is named with it{}.",
                            otherwise));
        if (notes.isUnknown)
            add("Where no sound or no container is named, nothing is known about such files.");
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

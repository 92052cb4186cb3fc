#include "tools/import/rules.h"

#include "base/media_ids.h"
#include "tools/import/limits.h"
#include "tools/import/names.h"
#include "tools/import/said_limits.h"
#include "tools/import/targets.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::size_t kMostRules = 256; // positions that an index can name

using Ways = std::vector<const Way *>;

/// What is known of a file beside its sound, while rules for the sound are made.
struct Surrounding {
    bool isMusic;
    int picture; ///< its codec; 0: any
    const std::vector<Wish> &wishes;

    bool concerns(const Wish &wish) const { return wish.isVideo != isMusic; }
};

bool isMade(int format, int sound, const Surrounding &surrounding)
{
    return !containerOption(format, sound, surrounding.isMusic).empty();
}

/// Whether sound of the codec and the picture can be put into the container.
bool isMakeable(int format, int sound, const Surrounding &surrounding)
{
    return isMade(format, sound, surrounding) && canHold(format, sound) &&
           (surrounding.isMusic || canHold(format, surrounding.picture));
}

/// The place in the order of a rule's containers.
auto placeOf(int format, int sound, const Surrounding &surrounding)
{
    const auto wish = std::ranges::find_if(surrounding.wishes, [&](const Wish &each) {
        return surrounding.concerns(each) && each.format == format;
    });
    return std::tuple(format == 0, !isMakeable(format, sound, surrounding),
                      !isMade(format, sound, surrounding), wish - surrounding.wishes.begin(),
                      rankOf(format, surrounding.isMusic));
}

/// Whether an entry before takes what this one would take.
bool isCovered(int format, const std::vector<ContainerRule> &before)
{
    return std::ranges::any_of(before, [format](const ContainerRule &rule) {
        const int earlier = rule.container.format;
        const bool isOfAnySubtype = subtypePart(earlier) == 0;
        return earlier == format || (isOfAnySubtype && earlier == containerPart(format));
    });
}

std::vector<Container> distinctContainers(const Ways &ways)
{
    std::vector<Container> all;
    for (const Way *way : ways)
        for (const Container &container : way->containers)
            if (std::ranges::find(all, container.format, &Container::format) == all.end())
                all.push_back(container);
    return all;
}

/// Whether there is no container that is not among these.
bool areAll(const std::vector<Container> &containers)
{
    return std::ranges::all_of(allContainers(), [&](int format) {
        return std::ranges::find(containers, format, &Container::format) != containers.end();
    });
}

/// The ways' containers, each once. The first is one into which sound of the codec and the picture
/// can be put, or it is marked that nothing is; a wildcard is the last.
std::vector<ContainerRule> containersOf(const Ways &ways, int sound, const Surrounding &surrounding)
{
    std::vector<Container> all = distinctContainers(ways);
    if (areAll(all)) all = {{0, mimeOf(0, surrounding.isMusic), {}}};
    if (all.size() == 1 && all.front().format == 0) { // nothing can be put into "any"
        const int general = "matroska"_container;
        all.push_back({general, mimeOf(general, surrounding.isMusic), {}});
    }
    std::ranges::stable_sort(all, {}, [&](const Container &container) {
        return placeOf(container.format, sound, surrounding);
    });
    std::vector<ContainerRule> rules;
    for (const Container &container : all) {
        if (isCovered(container.format, rules)) continue;
        std::string option = containerOption(container.format, sound, surrounding.isMusic);
        if (container.timeStamped) option += " -mpegts_m2ts_mode 1";
        rules.push_back({container, option});
    }
    rules.front().noTranscode = !isMakeable(rules.front().container.format, sound, surrounding);
    return rules;
}

/// What a way says of the picture, or of the sound.
const Limits &pictureOf(const Way &way)
{
    return *way.picture;
}
const Limits &soundOf(const Way &way)
{
    return way.sound;
}
using StreamOf = const Limits &(*)(const Way &way);

/// The codecs to make rules for, in the ways' order. Where a way takes any, that comes last, and
/// those that can be made come too: one of them is to be the target.
std::vector<int> codecsOf(const Ways &ways, StreamOf stream)
{
    std::vector<int> codecs;
    const auto addNew = [&](int codec) {
        if (codec != 0 && std::ranges::find(codecs, codec) == codecs.end()) codecs.push_back(codec);
    };
    const auto codecIn = [stream](const Way *way) { return stream(*way).codec; };
    std::ranges::for_each(ways, addNew, codecIn);
    if (std::ranges::find(ways, 0, codecIn) == ways.end()) return codecs;
    std::ranges::for_each(makeableCodecs(stream == pictureOf), addNew);
    codecs.push_back(0);
    return codecs;
}

/// As a rule says them: a size alone limits nothing, so it gets a partner that all pictures keep.
Limits asSaid(Limits limits)
{
    if (limits.width.least != 0 || limits.height.least != 0) {
        limits.width.least = std::max(limits.width.least, 1);
        limits.height.least = std::max(limits.height.least, 1);
    }
    return limits;
}

/// The limits for one codec, each once: of the ways that name it, and of those that name none.
std::vector<Limits> limitsOf(const Ways &ways, StreamOf stream, int codec)
{
    std::vector<Limits> all;
    for (const Way *way : ways) {
        Limits limits = asSaid(stream(*way));
        if (limits.codec != 0 && limits.codec != codec) continue;
        limits.codec = codec;
        if (std::ranges::find(all, limits) == all.end()) all.push_back(limits);
    }
    return all;
}

/// The ways that take all of the region.
Ways waysOf(const Ways &ways, StreamOf stream, const Limits &region)
{
    Ways found;
    std::ranges::copy_if(ways, std::back_inserter(found),
                         [&](const Way *way) { return contains(stream(*way), region); });
    return found;
}

std::set<int> originsOf(const Ways &ways, std::vector<int> Way::*kind)
{
    std::set<int> origins;
    for (const Way *way : ways) origins.insert((way->*kind).begin(), (way->*kind).end());
    return origins;
}

bool haveSameContent(const Rule &one, const Rule &other)
{
    const auto format = [](const ContainerRule &rule) { return rule.container.format; };
    return std::ranges::is_permutation(one.containers, other.containers, {}, format, format) &&
           std::ranges::equal(one.sounds, other.sounds, [](const Rule &left, const Rule &right) {
               return left.limits == right.limits && haveSameContent(left, right);
           });
}

/// Whether all that a rule takes finds the same in the rules behind it.
bool isNeedless(const Rule &rule, const std::vector<Rule> &rules)
{
    for (const Rule &later : std::span(&rule + 1, rules.data() + rules.size())) {
        if (!intersection(later.limits, rule.limits)) continue;
        if (!haveSameContent(later, rule)) return false;
        if (contains(later.limits, rule.limits)) return true;
    }
    return false;
}

/// Removes rules that nothing gets to, or that make no difference. The first stays, as the target.
void dropNeedless(std::vector<Rule> &rules)
{
    for (std::size_t i = rules.size(); i-- > 1;)
        if (contains(rules.front().limits, rules[i].limits) || isNeedless(rules[i], rules))
            rules.erase(rules.begin() + static_cast<std::ptrdiff_t>(i));
}

/// What of a rule may stand before all others, since what would find an earlier one finds the same
/// in it; nothing: none of it. Of pictures it is those that are larger than what earlier rules
/// take. A rule that leads is what is transcoded to, and needs both of the greatest sizes or none.
std::optional<Limits> leadingPart(const Rule &rule, const std::vector<Rule> &rules)
{
    Limits part = withWholeSize(rule.limits);
    for (const Rule *earlier = rules.data(); earlier != &rule; ++earlier) {
        const auto isAlike = [&] {
            return !intersection(earlier->limits, part) || haveSameContent(*earlier, rule);
        };
        if (isAlike()) continue;
        const bool isLower = earlier->limits.height.most != 0;
        Range &size = isLower ? part.height : part.width;
        size.least = (isLower ? earlier->limits.height : earlier->limits.width).most + 1;
        if ((size.most != 0 && size.least > size.most) || !isAlike()) return std::nullopt;
    }
    return asSaid(part);
}

/// Whether what the rule takes can be made, and put into its first container.
bool isTarget(const Rule &rule)
{
    if (rule.option.empty()) return false;
    if (rule.sounds.empty()) return !rule.containers.front().noTranscode;
    const Rule &sound = rule.sounds.front();
    const int format = sound.containers.front().container.format;
    return canHold(format, rule.limits.codec) && canHold(format, sound.limits.codec);
}

/// The place in the order of targets: what is wished for, then what is preferred anyway.
auto placeOf(const Rule &rule, const Surrounding &surrounding)
{
    const int codec = rule.limits.codec;
    const bool ofPicture = isPicture(codec);
    const auto wish = std::ranges::find_if(surrounding.wishes, [&](const Wish &each) {
        return ofPicture ? each.picture == codec
                         : surrounding.concerns(each) && each.sound == codec;
    });
    const std::vector<int> preferred = makeableCodecs(ofPicture);
    return std::tuple(wish - surrounding.wishes.begin(),
                      std::ranges::find(preferred, codec) - preferred.begin(),
                      isLimitedBelow(rule.limits), -targetArea(rule.limits));
}

/// Puts the best target before all rules, of equals the last, which takes most, and behind it the
/// rules of its codec. Without a target nothing is left.
void putTargetFirst(std::vector<Rule> &rules, const Surrounding &surrounding)
{
    const Rule *best = nullptr;
    for (const Rule &rule : rules)
        if (isTarget(rule) && leadingPart(rule, rules) &&
            (!best || placeOf(rule, surrounding) <= placeOf(*best, surrounding)))
            best = &rule;
    if (!best) return rules.clear();
    Rule target = *best;
    target.limits = *leadingPart(*best, rules);
    for (Rule &rule : rules) rule.option.clear();
    std::stable_partition(rules.begin(), rules.end(), [&](const Rule &rule) {
        return rule.limits.codec == target.limits.codec;
    });
    rules.insert(rules.begin(), std::move(target));
}

/// Where no sound can be put into a container that is known to hold the picture as well, any
/// container that can be made has to do.
void allowUnusualTargets(std::vector<Rule> &rules)
{
    if (std::ranges::any_of(rules, isTarget)) return;
    for (Rule &rule : rules) {
        ContainerRule &first = rule.containers.front();
        first.noTranscode = first.option.empty();
    }
}

/// A note on what the rules made of a player leave out.
Note noteOf(Player &player, std::string what)
{
    return {player.remarks, {}, 0, std::move(what)};
}

/// The limits to make rules for.
std::vector<Limits> regions(const Ways &ways, StreamOf stream, int codec, Player &player)
{
    std::vector<Limits> found = regionsOf(limitsOf(ways, stream, codec));
    if (found.size() >= kMostRegions)
        noteOf(player, codecText(codec))
            .stricter("its limits overlap in more ways than rules are made for; where they do, "
                      "some files are transcoded");
    return found;
}

/// The rules for the sound; none, if none of it can be made.
std::vector<Rule> soundRules(const Ways &ways, const Surrounding &surrounding, Player &player)
{
    std::vector<Rule> rules;
    for (const int codec : codecsOf(ways, soundOf))
        for (const Limits &region : regions(ways, soundOf, codec, player)) {
            const Ways taking = waysOf(ways, soundOf, region);
            rules.push_back({region,
                             targetOption(region),
                             originsOf(taking, &Way::soundOrigins),
                             containersOf(taking, codec, surrounding),
                             {}});
        }
    if (!surrounding.isMusic) allowUnusualTargets(rules);
    putTargetFirst(rules, surrounding);
    dropNeedless(rules);
    return rules;
}

/// A table for which there is no film, so that a rule without transcoding refuses what it takes.
std::vector<Rule> soundsOfNoFilm()
{
    const Limits sound{.codec = "pcm_s16le"_codec};
    const int wav = "wav"_container;
    const ContainerRule container{{wav, mimeOf(wav, true), {}},
                                  containerOption(wav, sound.codec, true)};
    return {{sound, targetOption(sound), {}, {container}, {}}};
}

/// Whether nothing gets past the earlier of two rules with play exceptions. Rules that refuse
/// different things may come to turn away the same.
bool covers(const Rule &earlier, const Rule &rule)
{
    Limits outer = earlier.limits;
    Limits inner = rule.limits;
    outer.refused = inner.refused = 0;
    return contains(outer, inner) && (earlier.exceptions & ~rule.exceptions) == 0;
}

/// Gives the rules their play exceptions. To turn Dolby Vision away a list would have to name all
/// that comes with it, ten bits before all, and so turn them away too; ffmpeg could make little of
/// its colours anyhow. So it is refused, by a rule between two that take the rest.
std::vector<Rule> withExceptions(const std::vector<Rule> &rules)
{
    std::vector<Rule> all;
    for (Rule rule : rules) {
        rule.exceptions = playExceptions(rule.limits);
        const auto takesAll = [&](const Rule &earlier) { return covers(earlier, rule); };
        if (std::ranges::any_of(all, takesAll)) continue;
        all.push_back(rule);
        const bool isTakenElsewhere = std::ranges::any_of(rules, [&](const Rule &other) {
            return withoutDolbyVision(other.limits) == other.limits &&
                   intersection(other.limits, withoutDolbyVision(rule.limits));
        });
        if (!isForDolbyVision(rule.limits) || isTakenElsewhere) continue;
        rule.option.clear();
        all.push_back(rule);
        all.back().exceptions = allButDolbyVision();
        all.back().noTranscode = true;
        all.back().sounds = soundsOfNoFilm();
        rule.exceptions = playExceptions(withoutDolbyVision(rule.limits));
        all.push_back(std::move(rule));
    }
    return all;
}

std::vector<Rule> pictureRules(const Ways &ways, Player &player)
{
    std::vector<Rule> rules;
    for (const int codec : codecsOf(ways, pictureOf))
        for (const Limits &region : regions(ways, pictureOf, codec, player)) {
            const Ways taking = waysOf(ways, pictureOf, region);
            rules.push_back({region,
                             targetOption(withWholeSize(region)),
                             originsOf(taking, &Way::pictureOrigins),
                             {},
                             soundRules(taking, {false, codec, player.wishes}, player)});
            if (!rules.back().sounds.empty()) continue;
            noteOf(player, codecText(codec))
                .stricter("no sound that is played with it can be made, and every VCODEC needs "
                          "one; it is transcoded");
            rules.pop_back();
        }
    putTargetFirst(rules, {false, 0, player.wishes});
    dropNeedless(rules);
    return withExceptions(rules);
}

void keepAddressable(std::vector<Rule> &rules, const char *element, Player &player)
{
    if (rules.size() <= kMostRules) return;
    noteOf(player, {})
        .stricter("{} {} rules are left out: a list has {} places", rules.size() - kMostRules,
                  element, kMostRules);
    rules.resize(kMostRules);
}

Ways waysOfKind(const Player &player, bool isVideo)
{
    Ways ways;
    for (const Way &way : player.ways)
        if (way.picture.has_value() == isVideo) ways.push_back(&way);
    return ways;
}

/// For a player of which it is only told what it wants to be given: that is taken, too.
void takeWhatIsWished(Player &player, bool isVideo)
{
    for (const Wish &wish : player.wishes) {
        if (wish.isVideo != isVideo || wish.sound == 0 || wish.format == 0) continue;
        Way way{std::nullopt, {}, {{wish.format, mimeOf(wish.format, !isVideo), {}}}, {}, {}};
        way.sound.codec = wish.sound;
        if (isVideo)
            way.picture = Limits{.codec = wish.picture, .width = {0, 1920}, .height = {0, 1080}};
        player.ways.push_back(std::move(way));
    }
}

std::vector<Rule> rulesOfKind(Player &player, bool isVideo)
{
    const Ways ways = waysOfKind(player, isVideo);
    return isVideo ? pictureRules(ways, player)
                   : soundRules(ways, {true, 0, player.wishes}, player);
}

/// Makes the rules of a section. Where nothing of what is played can be made, what is wished for
/// has to be played as well, since the first rule says both.
std::vector<Rule> rulesOfSection(Player &player, bool isVideo)
{
    const bool isAny = !waysOfKind(player, isVideo).empty();
    std::vector<Rule> rules = rulesOfKind(player, isVideo);
    if (!rules.empty()) return rules;
    takeWhatIsWished(player, isVideo);
    rules = rulesOfKind(player, isVideo);
    const Note note = noteOf(player, isVideo ? "VIDEO" : "MUSIC");
    if (!rules.empty())
        note.leftOut("nothing of what is played as it is can be made; what is wished for is taken "
                     "as it is, too, since the first rule says both");
    else if (isAny)
        note.stricter("ffmpeg makes nothing of what is played, and there is no rule without "
                      "something to transcode to");
    return rules;
}

} // namespace

DeviceRules makeRules(Player &player)
{
    DeviceRules rules{rulesOfSection(player, false), rulesOfSection(player, true)};
    if (rules.music.empty() && rules.video.empty())
        throw std::runtime_error("nothing that is played as it is can be made by ffmpeg, so there "
                                 "is nothing to transcode to, and no profile");
    keepAddressable(rules.music, "ACODEC", player);
    keepAddressable(rules.video, "VCODEC", player);
    for (Rule &rule : rules.video) keepAddressable(rule.sounds, "ACODEC", player);
    return rules;
}

} // namespace vornak::tool

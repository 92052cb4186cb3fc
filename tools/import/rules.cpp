#include "tools/import/rules.h"

#include "base/media_ids.h"
#include "tools/import/container_facts.h"
#include "tools/import/limits.h"
#include "tools/import/names.h"
#include "tools/import/said_limits.h"
#include "tools/import/targets.h"
#include "tools/profile/id_names.h"

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
        return each.isVideo != surrounding.isMusic && each.format == format;
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

/// What a way says of the sound, or of the picture.
const SoundLimits &limitsIn(const Way &way, const SoundRule *)
{
    return way.sound;
}
const PictureLimits &limitsIn(const Way &way, const PictureRule *)
{
    return *way.picture;
}
template <class Rule>
const auto &limitsIn(const Way &way)
{
    return limitsIn(way, static_cast<const Rule *>(nullptr));
}

/// The codecs to make rules for, in the ways' order. Where a way takes any, that comes last, and
/// those that can be made come too: one of them is to be the target.
template <class Rule>
std::vector<int> codecsOf(const Ways &ways, const std::vector<int> &makeable)
{
    std::vector<int> codecs;
    const auto addNew = [&](int codec) {
        if (codec != 0 && std::ranges::find(codecs, codec) == codecs.end()) codecs.push_back(codec);
    };
    const auto codecIn = [](const Way *way) { return limitsIn<Rule>(*way).codec; };
    std::ranges::for_each(ways, addNew, codecIn);
    if (std::ranges::find(ways, 0, codecIn) == ways.end()) return codecs;
    std::ranges::for_each(makeable, addNew);
    codecs.push_back(0);
    return codecs;
}

/// As a rule says them: a size alone limits nothing, so it gets a partner that all pictures keep.
PictureLimits asSaid(PictureLimits limits)
{
    if (limits.width.least != 0 || limits.height.least != 0) {
        limits.width.least = std::max(limits.width.least, 1);
        limits.height.least = std::max(limits.height.least, 1);
    }
    return limits;
}
SoundLimits asSaid(const SoundLimits &limits)
{
    return limits;
}

/// The limits for one codec, each once: of the ways that name it, and of those that name none.
template <class Rule>
auto limitsOf(const Ways &ways, int codec)
{
    std::vector<decltype(Rule::limits)> all;
    for (const Way *way : ways) {
        auto limits = asSaid(limitsIn<Rule>(*way));
        if (limits.codec != 0 && limits.codec != codec) continue;
        limits.codec = codec;
        if (std::ranges::find(all, limits) == all.end()) all.push_back(limits);
    }
    return all;
}

/// The ways that take all of the region.
template <class Rule>
Ways waysOf(const Ways &ways, const decltype(Rule::limits) &region)
{
    Ways found;
    std::ranges::copy_if(ways, std::back_inserter(found),
                         [&](const Way *way) { return contains(limitsIn<Rule>(*way), region); });
    return found;
}

std::set<int> originsOf(const Ways &ways, std::vector<int> Way::*kind)
{
    std::set<int> origins;
    for (const Way *way : ways) origins.insert((way->*kind).begin(), (way->*kind).end());
    return origins;
}

bool haveSameContent(const SoundRule &one, const SoundRule &other)
{
    const auto format = [](const ContainerRule &rule) { return rule.container.format; };
    return std::ranges::is_permutation(one.containers, other.containers, {}, format, format);
}
bool haveSameContent(const PictureRule &one, const PictureRule &other)
{
    return std::ranges::equal(one.sounds, other.sounds, [](const auto &left, const auto &right) {
        return left.limits == right.limits && haveSameContent(left, right);
    });
}

/// Whether all that a rule takes finds the same in the rules behind it.
template <class Rule>
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
template <class Rule>
void dropNeedless(std::vector<Rule> &rules)
{
    for (std::size_t i = rules.size(); i-- > 1;)
        if (contains(rules.front().limits, rules[i].limits) || isNeedless(rules[i], rules))
            rules.erase(rules.begin() + static_cast<std::ptrdiff_t>(i));
}

/// Whether what would find an earlier rule finds the same in this one.
template <class Rule>
bool isAlike(const Rule &earlier, const Rule &rule)
{
    return !intersection(earlier.limits, rule.limits) || haveSameContent(earlier, rule);
}

/// What of a rule may stand before all others; nothing: none of it.
std::optional<SoundLimits> leadingPart(const SoundRule &rule, const std::vector<SoundRule> &rules)
{
    const bool isWhole = std::all_of(
        rules.data(), &rule, [&](const SoundRule &earlier) { return isAlike(earlier, rule); });
    return isWhole ? std::optional(rule.limits) : std::nullopt;
}

/// The same of pictures: those that are larger than what earlier rules take. A rule that leads is
/// what is transcoded to, and needs both of the greatest sizes or none.
std::optional<PictureLimits> leadingPart(const PictureRule &rule,
                                         const std::vector<PictureRule> &rules)
{
    PictureRule part = rule;
    part.limits = withWholeSize(rule.limits);
    for (const PictureRule *earlier = rules.data(); earlier != &rule; ++earlier) {
        if (isAlike(*earlier, part)) continue;
        const bool isLower = earlier->limits.height.most != 0;
        Range &size = isLower ? part.limits.height : part.limits.width;
        size.least = (isLower ? earlier->limits.height : earlier->limits.width).most + 1;
        if ((size.most != 0 && size.least > size.most) || !isAlike(*earlier, part))
            return std::nullopt;
    }
    return asSaid(part.limits);
}

/// Whether what the rule takes can be made, and put into its first container.
bool isTarget(const SoundRule &rule)
{
    return !rule.option.empty() && !rule.containers.front().noTranscode;
}
bool isTarget(const PictureRule &rule)
{
    return !rule.option.empty() &&
           canHold(rule.sounds.front().containers.front().container.format, rule.limits.codec);
}

auto rankIn(const std::vector<int> &preferred, int codec)
{
    return std::ranges::find(preferred, codec) - preferred.begin();
}

/// The place in the order of targets: what is wished for, then what is preferred anyway.
auto placeOf(const SoundRule &rule, const Surrounding &surrounding)
{
    const auto wish = std::ranges::find_if(surrounding.wishes, [&](const Wish &each) {
        return each.isVideo != surrounding.isMusic && each.sound == rule.limits.codec;
    });
    return std::pair(wish - surrounding.wishes.begin(),
                     rankIn(makeableSounds(), rule.limits.codec));
}
auto placeOf(const PictureRule &rule, const Surrounding &surrounding)
{
    const auto wish = std::ranges::find(surrounding.wishes, rule.limits.codec, &Wish::picture);
    return std::tuple(wish - surrounding.wishes.begin(),
                      rankIn(makeablePictures(), rule.limits.codec), isLimitedBelow(rule.limits),
                      -targetArea(rule.limits));
}

/// Puts the best target before all rules, of equals the last, which takes most, and behind it the
/// rules of its codec. Without a target nothing is left.
template <class Rule>
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
void allowUnusualTargets(std::vector<SoundRule> &rules)
{
    if (std::ranges::any_of(rules, [](const SoundRule &rule) { return isTarget(rule); })) return;
    for (SoundRule &rule : rules) {
        ContainerRule &first = rule.containers.front();
        first.noTranscode = first.option.empty();
    }
}

void leaveOut(Player &player, std::string text)
{
    player.remarks.insert({{}, 0, Remark::Stricter, std::move(text)});
}

/// The limits to make rules for.
template <class Rule>
auto regions(const Ways &ways, int codec, Player &player)
{
    auto found = regionsOf(limitsOf<Rule>(ways, codec));
    if (found.size() >= kMostRegions)
        leaveOut(player, fmt::format("{}: its limits overlap in more ways than rules are made for; "
                                     "where they do, some files are transcoded",
                                     codecText(codec)));
    return found;
}

/// The rules for the sound; none, if none of it can be made.
std::vector<SoundRule> soundRules(const Ways &ways, const Surrounding &surrounding, Player &player)
{
    std::vector<SoundRule> rules;
    for (const int codec : codecsOf<SoundRule>(ways, makeableSounds()))
        for (const SoundLimits &region : regions<SoundRule>(ways, codec, player)) {
            const Ways taking = waysOf<SoundRule>(ways, region);
            rules.push_back({region, soundOption(region), containersOf(taking, codec, surrounding),
                             originsOf(taking, &Way::soundOrigins)});
        }
    if (!surrounding.isMusic) allowUnusualTargets(rules);
    putTargetFirst(rules, surrounding);
    dropNeedless(rules);
    return rules;
}

/// A table for which there is no film, so that a rule without transcoding refuses what it takes.
std::vector<SoundRule> soundsOfNoFilm()
{
    SoundLimits sound;
    sound.codec = "pcm_s16le"_codec;
    const int wav = "wav"_container;
    return {{sound,
             soundOption(sound),
             {{{wav, mimeOf(wav, true), {}}, containerOption(wav, sound.codec, true)}},
             {}}};
}

/// Whether nothing gets past the earlier of two rules with play exceptions. Rules that refuse
/// different things may come to turn away the same.
bool covers(const PictureRule &earlier, const PictureRule &rule)
{
    PictureLimits outer = earlier.limits;
    PictureLimits inner = rule.limits;
    outer.refused = inner.refused = 0;
    return contains(outer, inner) && (earlier.exceptions & ~rule.exceptions) == 0;
}

/// Gives the rules their play exceptions. To turn Dolby Vision away a list would have to name all
/// that comes with it, ten bits before all, and so turn them away too; ffmpeg could make little of
/// its colours anyhow. So it is refused, by a rule between two that take the rest.
std::vector<PictureRule> withExceptions(const std::vector<PictureRule> &rules)
{
    std::vector<PictureRule> all;
    for (PictureRule rule : rules) {
        rule.exceptions = playExceptions(rule.limits);
        const auto takesAll = [&](const PictureRule &earlier) { return covers(earlier, rule); };
        if (std::ranges::any_of(all, takesAll)) continue;
        all.push_back(rule);
        const bool isTakenElsewhere = std::ranges::any_of(rules, [&](const PictureRule &other) {
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

std::vector<PictureRule> pictureRules(const Ways &ways, Player &player)
{
    std::vector<PictureRule> rules;
    for (const int codec : codecsOf<PictureRule>(ways, makeablePictures()))
        for (const PictureLimits &region : regions<PictureRule>(ways, codec, player)) {
            const Ways taking = waysOf<PictureRule>(ways, region);
            PictureRule rule{region, pictureOption(withWholeSize(region)),
                             soundRules(taking, {false, codec, player.wishes}, player),
                             originsOf(taking, &Way::pictureOrigins)};
            if (!rule.sounds.empty())
                rules.push_back(std::move(rule));
            else
                leaveOut(player, fmt::format("{}: no sound that is played with it can be made, and "
                                             "every VCODEC needs one; it is transcoded",
                                             codecText(codec)));
        }
    putTargetFirst(rules, {false, 0, player.wishes});
    dropNeedless(rules);
    return withExceptions(rules);
}

template <class Rule>
void keepAddressable(std::vector<Rule> &rules, const char *element, Player &player)
{
    if (rules.size() <= kMostRules) return;
    leaveOut(player, fmt::format("{} {} rules are left out: a list has {} places",
                                 rules.size() - kMostRules, element, kMostRules));
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
        if (isVideo) way.picture = PictureLimits{wish.picture, 0, 0, {0, 1920}, {0, 1080}, {}, 0};
        player.ways.push_back(std::move(way));
    }
}

void note(Player &player, Remark::Kind kind, bool isVideo, const char *what)
{
    player.remarks.insert({{}, 0, kind, fmt::format("{}: {}", isVideo ? "VIDEO" : "MUSIC", what)});
}

/// Makes the rules of a section. Where nothing of what is played can be made, what is wished for
/// has to be played as well, since the first rule says both.
template <class MakeRules>
auto rulesOfSection(Player &player, bool isVideo, MakeRules make)
{
    const bool isAny = !waysOfKind(player, isVideo).empty();
    auto rules = make(waysOfKind(player, isVideo));
    if (!rules.empty()) return rules;
    takeWhatIsWished(player, isVideo);
    rules = make(waysOfKind(player, isVideo));
    if (!rules.empty())
        note(player, Remark::LeftOut, isVideo,
             "nothing of what is played as it is can be made; what is wished for is taken as it "
             "is, too, since the first rule says both");
    else if (isAny)
        note(player, Remark::Stricter, isVideo,
             "ffmpeg makes nothing of what is played, and there is no rule without something to "
             "transcode to");
    return rules;
}

} // namespace

DeviceRules makeRules(Player &player)
{
    DeviceRules rules;
    rules.music = rulesOfSection(player, false, [&](const Ways &ways) {
        return soundRules(ways, {true, 0, player.wishes}, player);
    });
    rules.video =
        rulesOfSection(player, true, [&](const Ways &ways) { return pictureRules(ways, player); });
    if (rules.music.empty() && rules.video.empty())
        throw std::runtime_error("nothing that is played as it is can be made by ffmpeg, so there "
                                 "is nothing to transcode to, and no profile");
    keepAddressable(rules.music, "ACODEC", player);
    keepAddressable(rules.video, "VCODEC", player);
    for (PictureRule &rule : rules.video) keepAddressable(rule.sounds, "ACODEC", player);
    return rules;
}

} // namespace vornak::tool

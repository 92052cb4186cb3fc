#include "tools/import/jellyfin_condition.h"

#include "base/media_ids.h"
#include "platform/registry_names.h"
#include "tools/import/levels.h"
#include "tools/import/names.h"
#include "tools/import/sample_rates.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <limits>

namespace vornak::tool {

/// What a property is to a Device profile.
struct JellyfinProperty {
    enum Kind {
        PictureNumber,
        SoundNumber,
        PictureProfile,
        SoundProfile,
        Level,
        Depth,
        SoundDepth,
        Dynamics,
        Interlacing,
        Unlimited
    };

    const char *name;
    int number; // that stands for the name
    Kind kind;
    const char *what; // that is not limited, or null
    Range PictureLimits::*pictureRange = nullptr;
    Range SoundLimits::*soundRange = nullptr;
    int least = 1; // of the values that are known
};

namespace {

using Property = JellyfinProperty;
using Condition = JellyfinCondition;

constexpr Property s_Properties[] = {
    {"AudioChannels", 0, Property::SoundNumber, nullptr, nullptr, &SoundLimits::channels},
    {"AudioBitrate", 1, Property::SoundNumber, nullptr, nullptr, &SoundLimits::bitrate, 1000},
    {"AudioProfile", 2, Property::SoundProfile, nullptr},
    {"Width", 3, Property::PictureNumber, nullptr, &PictureLimits::width},
    {"Height", 4, Property::PictureNumber, nullptr, &PictureLimits::height},
    {"Has64BitOffsets", 5, Property::Unlimited, "the size of offsets in the file"},
    {"PacketLength", 6, Property::Unlimited, "the length of packets"},
    {"VideoBitDepth", 7, Property::Depth, nullptr},
    {"VideoBitrate", 8, Property::PictureNumber, nullptr, &PictureLimits::bitrate, nullptr, 1000},
    {"VideoFramerate", 9, Property::Unlimited, "the frame rate"},
    {"VideoLevel", 10, Property::Level, nullptr},
    {"VideoProfile", 11, Property::PictureProfile, nullptr},
    {"VideoTimestamp", 12, Property::Unlimited, "time stamps in a transport stream"},
    {"IsAnamorphic", 13, Property::Unlimited, "the shape of pixels"},
    {"RefFrames", 14, Property::Unlimited, "the number of reference frames"},
    {"NumAudioStreams", 16, Property::Unlimited, "the number of audio tracks"},
    {"NumVideoStreams", 17, Property::Unlimited, "the number of video tracks"},
    {"IsSecondaryAudio", 18, Property::Unlimited, "which of several audio tracks is played"},
    {"VideoCodecTag", 19, Property::Unlimited, "the codec's tag in the file"},
    {"IsAvc", 20, Property::Unlimited, "how the units of a stream are set apart"},
    {"IsInterlaced", 21, Property::Interlacing, nullptr},
    {"AudioSampleRate", 22, Property::SoundNumber, nullptr, nullptr, &SoundLimits::sampleRate,
     8000},
    {"AudioBitDepth", 23, Property::SoundDepth, nullptr},
    {"VideoRangeType", 24, Property::Dynamics, nullptr},
    {"NumStreams", 25, Property::Unlimited, "the number of streams"},
    {"VideoRotation", 26, Property::Unlimited, "by how much a picture is turned"},
};

constexpr NamedNumber s_Tests[] = {{"Equals", Condition::Equals},
                                   {"NotEquals", Condition::NotEquals},
                                   {"LessThanEqual", Condition::AtMost},
                                   {"GreaterThanEqual", Condition::AtLeast},
                                   {"EqualsAny", Condition::AnyOf}};

const Property *findProperty(const std::string &word)
{
    const auto *const found = std::ranges::find_if(s_Properties, [&](const Property &row) {
        const NamedNumber named{row.name, row.number};
        return findNamed({&named, 1}, word) != nullptr;
    });
    return found == std::end(s_Properties) ? nullptr : found;
}

std::optional<std::int64_t> numberIn(const std::string &text)
{
    std::int64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

/// Whether a known value keeps the condition.
bool keeps(const Condition &condition, std::int64_t value)
{
    const auto number = numberIn(condition.values.empty() ? "" : condition.values.front());
    switch (condition.test) {
    case Condition::Equals:
        return number && value == *number;
    case Condition::NotEquals:
        return number && value != *number;
    case Condition::AtMost:
        return number && value <= *number;
    case Condition::AtLeast:
        return number && value >= *number;
    case Condition::AnyOf:
        break;
    }
    return std::ranges::any_of(
        condition.values, [value](const std::string &each) { return numberIn(each) == value; });
}

bool comparesNumbers(const Condition &condition)
{
    return condition.test == Condition::AtMost || condition.test == Condition::AtLeast;
}

/// The same of words, which have no order, with a rule for when two are the same.
template <class IsSame>
bool keepsWord(const Condition &condition, IsSame isSame)
{
    if (comparesNumbers(condition)) return false;
    const bool isAny = std::ranges::any_of(condition.values, isSame);
    return condition.test == Condition::NotEquals ? !isAny : isAny;
}

/// The ranges of values from 1 that keep the condition.
std::vector<Range> rangesThatKeep(const Condition &condition)
{
    constexpr std::int64_t kGreatest = std::numeric_limits<int>::max();
    std::vector<Range> ranges;
    const auto addRange = [&](std::int64_t least, std::int64_t most) {
        if (least > kGreatest || (most != 0 && most < std::max<std::int64_t>(least, 1))) return;
        ranges.push_back({static_cast<int>(least <= 1 ? 0 : least),
                          static_cast<int>(most >= kGreatest ? 0 : most)});
    };
    for (const std::string &text : condition.values) {
        const std::optional<std::int64_t> value = numberIn(text);
        if (!value) continue;
        const std::int64_t v = *value;
        if (condition.test == Condition::AtMost) addRange(0, v == 0 ? -1 : v);
        if (condition.test == Condition::AtLeast) addRange(v, 0);
        if (condition.test == Condition::NotEquals) {
            if (v > 1) addRange(0, v - 1);
            addRange(v < 1 ? 0 : v + 1, 0);
        }
        if (condition.test == Condition::Equals || condition.test == Condition::AnyOf)
            addRange(v, v == 0 ? -1 : v);
    }
    return ranges;
}

/// The union of limits by one number.
template <class Limits>
Union<Limits> numbersThatKeep(const Condition &condition, Range Limits::*range, const Note &note)
{
    const std::vector<Range> ranges = rangesThatKeep(condition);
    const bool isUnderstood = std::ranges::any_of(
        condition.values, [](const std::string &value) { return numberIn(value).has_value(); });
    if (!isUnderstood) note(Remark::Stricter, "no number, so nothing keeps it");
    Union<Limits> all;
    for (Range each : ranges) {
        if (condition.isRequired) each.least = std::max(each.least, condition.property->least);
        Limits limits;
        limits.*range = each;
        add(all, limits);
    }
    return all;
}

/// The names of profiles as ffmpeg writes them: "High 4:2:2", "Profile 0", "Simple Profile".
int profileBit(int codec, const std::string &written)
{
    std::string name = lowerCase(written);
    std::erase_if(name, [](char c) { return c == ' ' || c == ':' || c == '/'; });
    for (const std::string &each : {name, name.substr(0, name.rfind("profile"))})
        if (codecHasProfile(codec, each.c_str())) return profilesNamed(each);
    return 0;
}

bool isProfileOfAny(const std::string &written)
{
    return std::ranges::any_of(profileNames(), [&](const ProfileName &row) {
        return profileBit(row.codecId, written) != 0;
    });
}

void noteUnknown(const Condition &condition, const Note &note)
{
    if (condition.isRequired && !condition.isNegated)
        note(Remark::LeftOut, "files of which it isn't known are taken, too");
}

/// The bits of the profiles that keep the condition; 0: all. Nothing: none.
std::optional<int> profilesThatKeep(const Condition &condition, int codec, const Note &note)
{
    const int known = allProfilesOf(codec);
    if (known == 0) {
        note(Remark::LeftOut, fmt::format("no profiles of {} are known", codecText(codec)));
        return condition.isRequired ? std::nullopt : std::optional(0);
    }
    int named = 0;
    for (const std::string &value : condition.values) {
        named |= profileBit(codec, value);
        if (!isProfileOfAny(value))
            note(condition.test == Condition::NotEquals ? Remark::LeftOut : Remark::Stricter,
                 fmt::format("no profile is known by the name \"{}\"", printable(value)));
    }
    if (comparesNumbers(condition)) named = 0;
    const int kept = condition.test == Condition::NotEquals ? known & ~named : named;
    if (kept == 0) return std::nullopt;
    noteUnknown(condition, note);
    return kept == known ? 0 : kept;
}

/// Levels have an upper end alone.
Union<PictureLimits> levelsThatKeep(const Condition &condition, int codec, const Note &note)
{
    constexpr int s_Mpeg2Levels[] = {4, 6, 8, 10}; // from high to low
    const auto kept = [&](int level) { return keeps(condition, level); };
    noteUnknown(condition, note);
    if (codec == "mpeg2video"_codec) {
        if (std::ranges::all_of(s_Mpeg2Levels, kept)) return {PictureLimits{}};
        note(Remark::Stricter, "the levels of MPEG-2 run backwards, so its files are transcoded");
        return {};
    }
    PictureLimits limits;
    const std::span<const int> known = knownLevels(codec);
    if (known.empty()) {
        if (condition.test == Condition::AtLeast && kept(1)) return {limits};
        limits.level = static_cast<int>(std::clamp<std::int64_t>(
            numberIn(condition.values.empty() ? "" : condition.values.front()).value_or(0), 0,
            std::numeric_limits<int>::max()));
        if (condition.test == Condition::AtMost && limits.level > 0) return {limits};
        note(Remark::Stricter, fmt::format("a rule limits levels upwards alone, so {} is "
                                           "transcoded",
                                           codecText(codec)));
        return {};
    }
    const auto gap = std::ranges::find_if_not(known, kept);
    if (gap == known.end()) return {limits};
    if (std::any_of(gap, known.end(), kept))
        note(Remark::Stricter, "a rule limits levels upwards alone, so those above a gap are "
                               "transcoded");
    if (gap == known.begin()) return {};
    limits.level = gap[-1];
    return {limits};
}

Union<PictureLimits> refusing(const char *oddities)
{
    PictureLimits limits;
    limits.refused = playExceptionsNamed(oddities);
    return {limits};
}

Union<PictureLimits> depthsThatKeep(const Condition &condition, const Note &note)
{
    if (!keeps(condition, 8)) {
        if (keeps(condition, 10) || keeps(condition, 12))
            note(Remark::Stricter, "no rule can turn away 8 bits alone, so all is transcoded");
        return {};
    }
    const bool has10 = keeps(condition, 10);
    const bool has12 = keeps(condition, 12);
    return refusing(has10 ? has12 ? "" : "12bit" : has12 ? "10bit" : "10bit|12bit");
}

Union<PictureLimits> dynamicsThatKeep(const Condition &condition, const Note &note)
{
    const auto kept = [&](const char *type) {
        return keepsWord(condition,
                         [&](const std::string &value) { return lowerCase(value) == type; });
    };
    if (!kept("sdr")) {
        note(Remark::Stricter, "no rule can turn away SDR alone, so all is transcoded");
        return {};
    }
    const bool hdr10 =
        kept("hdr10") && (condition.test != Condition::NotEquals || kept("hdr10plus"));
    const bool hlg = kept("hlg");
    if (hdr10 != hlg)
        note(Remark::Stricter, "HDR10 and HLG are one to a Device profile, so both are transcoded");
    for (const char *const type : {"doviwithsdr", "doviwithhdr10", "doviwithhlg"})
        if (!kept(type)) {
            note(Remark::LeftOut, "Dolby Vision over SDR, HDR10 or HLG counts as these");
            break;
        }
    return refusing(hdr10 && hlg   ? kept("dovi") ? "" : "dolby_vision"
                    : kept("dovi") ? "hdr"
                                   : "hdr|dolby_vision");
}

Union<PictureLimits> interlacingThatKeeps(const Condition &condition, const Note &note)
{
    const auto kept = [&](const char *flag) {
        return keepsWord(condition,
                         [&](const std::string &value) { return lowerCase(value) == flag; });
    };
    if (!kept("false")) {
        note(Remark::Stricter, "no rule can turn away progressive pictures alone, so all is "
                               "transcoded");
        return {};
    }
    return refusing(kept("true") ? "" : "interlaced");
}

Union<SoundLimits> withSayableRates(const Union<SoundLimits> &all, const Note &note)
{
    Union<SoundLimits> sayable;
    for (SoundLimits limits : all) {
        const std::optional<SayableRates> rates = sayableRates(limits.sampleRate);
        if (!rates || !rates->isExact)
            note(Remark::Stricter, "rules name the usual sample rates alone");
        if (!rates) continue;
        limits.sampleRate = rates->range;
        add(sayable, limits);
    }
    return sayable;
}

/// The bits of a sample of PCM, by the codec's name; 0: unknown.
int pcmDepth(int codec)
{
    const std::string name = codecText(codec);
    if (!name.starts_with("pcm_")) return 0;
    const std::size_t digit = name.find_first_of("0123456789");
    return digit == std::string::npos
               ? 0
               : static_cast<int>(
                     numberIn(name.substr(digit, name[digit] == '8' ? 1 : 2)).value_or(0));
}

void noteUnlimited(const Property &property, const char *otherwise, const Note &note)
{
    note(Remark::LeftOut, property.kind == Property::Unlimited
                              ? fmt::format("a Device profile doesn't limit {}", property.what)
                              : otherwise);
}

} // namespace

std::optional<Condition> readCondition(ObjectReader &object, const std::string &file,
                                       Player &player)
{
    const std::string test = object.text("Condition");
    const std::string property = object.text("Property");
    const std::string value = object.text("Value");
    const std::string required = object.text("IsRequired");
    object.noteUnknown(player);
    const std::string said =
        printable(fmt::format("{}{} {} {}", object.place(), property, test, value));
    const NamedNumber *const knownTest = findNamed(s_Tests, test.empty() ? "Equals" : test);
    const Property *const knownProperty = findProperty(property);
    if (!knownTest || !knownProperty) {
        noteAt(player, file, object.line(), said)(Remark::LeftOut, "no condition that is known");
        return std::nullopt;
    }
    Condition condition{static_cast<Condition::Test>(knownTest->number),
                        knownProperty,
                        {value},
                        required.empty() || lowerCase(required) == "true",
                        false,
                        object.line(),
                        said};
    if (condition.test == Condition::AnyOf) condition.values = splitList(value, '|');
    return condition;
}

std::optional<Union<PictureLimits>> picturesThatKeep(const Condition &condition, int codec,
                                                     const Note &note)
{
    const Property &property = *condition.property;
    switch (property.kind) {
    case Property::PictureNumber:
        return numbersThatKeep(condition, property.pictureRange, note);
    case Property::PictureProfile: {
        const std::optional<int> profiles = profilesThatKeep(condition, codec, note);
        if (!profiles) return Union<PictureLimits>{};
        PictureLimits limits;
        limits.profiles = *profiles;
        return Union<PictureLimits>{limits};
    }
    case Property::Level:
        return levelsThatKeep(condition, codec, note);
    case Property::Depth:
        return depthsThatKeep(condition, note);
    case Property::Dynamics:
        return dynamicsThatKeep(condition, note);
    case Property::Interlacing:
        return interlacingThatKeeps(condition, note);
    default:
        noteUnlimited(property, "it is no property of a picture", note);
        return std::nullopt;
    }
}

std::optional<Union<SoundLimits>> soundsThatKeep(const Condition &condition, int codec,
                                                 const Note &note)
{
    const Property &property = *condition.property;
    switch (property.kind) {
    case Property::SoundNumber:
        return withSayableRates(numbersThatKeep(condition, property.soundRange, note), note);
    case Property::SoundProfile: {
        const std::optional<int> profiles = profilesThatKeep(condition, codec, note);
        if (!profiles) return Union<SoundLimits>{};
        SoundLimits limits;
        limits.profiles = *profiles;
        return Union<SoundLimits>{limits};
    }
    case Property::SoundDepth:
        if (const int depth = pcmDepth(codec); depth > 0)
            return keeps(condition, depth) ? Union<SoundLimits>{SoundLimits{}}
                                           : Union<SoundLimits>{};
        note(Remark::LeftOut, fmt::format("a Device profile doesn't limit the bits of a sample of "
                                          "{}",
                                          codecText(codec)));
        return std::nullopt;
    default:
        noteUnlimited(property, "it is no property of sound", note);
        return std::nullopt;
    }
}

bool takesUnknown(const Condition &condition)
{
    const Property::Kind kind = condition.property->kind;
    return kind == Property::PictureProfile || kind == Property::SoundProfile ||
           kind == Property::Level;
}

std::vector<Condition> negationOf(const Condition &condition)
{
    Condition negated = condition;
    negated.isRequired = !condition.isRequired;
    negated.isNegated = true;
    std::vector<Condition> all;
    switch (condition.test) {
    case Condition::Equals:
    case Condition::AnyOf:
        negated.test = Condition::NotEquals;
        for (const std::string &value : condition.values) {
            negated.values = {value};
            all.push_back(negated);
        }
        return all;
    case Condition::NotEquals:
        negated.test = Condition::Equals;
        break;
    case Condition::AtMost:
    case Condition::AtLeast: {
        const bool wasAtMost = condition.test == Condition::AtMost;
        negated.test = wasAtMost ? Condition::AtLeast : Condition::AtMost;
        const std::optional<std::int64_t> value = numberIn(condition.values.front());
        constexpr std::int64_t kBeyond = std::int64_t{1} << 40;
        if (value && *value > -kBeyond && *value < kBeyond)
            negated.values = {std::to_string(*value + (wasAtMost ? 1 : -1))};
        break;
    }
    }
    return {negated};
}

} // namespace vornak::tool

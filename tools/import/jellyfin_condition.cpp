#include "tools/import/jellyfin_condition.h"

#include "base/media_ids.h"
#include "platform/registry_names.h"
#include "tools/import/names.h"
#include "tools/import/said_limits.h"
#include "tools/import/text_file.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <limits>

namespace vornak::tool {

template <class Limits>
using Kept = std::optional<Union<Limits>>;

/// What a property is to a Device profile.
struct JellyfinProperty {
    template <class Limits>
    using Keep = Kept<Limits> (*)(const JellyfinCondition &condition, int codec, const Note &note);

    const char *name;
    int number;                   // that stands for the name
    Keep<PictureLimits> pictures; // null: it is none of pictures
    Keep<SoundLimits> sounds;
    const char *unlimited;     // what isn't limited, or null
    int least = 1;             // of the values that are known
    bool takesUnknown = false; // whether a rule takes streams of which it isn't known
};

namespace {

using Property = JellyfinProperty;
using Condition = JellyfinCondition;

constexpr std::size_t kMostValues = 1000;

// Of streams in these codecs nobody knows a profile, or how many bits a sample has.
constexpr CodecList kWithoutProfile =
    "mp1|mp2|mp3|ac3|opus|vorbis|flac|alac|wmav1|wmav2|wmapro|wmalossless|amr_nb|amr_wb|speex|"
    "mpeg1video|wmv1|wmv2|msmpeg4v1|msmpeg4v2|msmpeg4v3|theora|flv1"_codecs;
constexpr CodecList kWithoutSampleBits =
    "aac|aac_latm|mp1|mp2|mp3|ac3|eac3|opus|vorbis|wmav1|wmav2|amr_nb|amr_wb|speex"_codecs;

constexpr NamedNumber s_Tests[] = {{"Equals", Condition::Equals},
                                   {"NotEquals", Condition::NotEquals},
                                   {"LessThanEqual", Condition::AtMost},
                                   {"GreaterThanEqual", Condition::AtLeast},
                                   {"EqualsAny", Condition::AnyOf}};

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

/// The same of words, in lower case, which have no order.
bool keepsWord(const Condition &condition, const char *word)
{
    if (comparesNumbers(condition)) return false;
    const bool isAny =
        std::ranges::find(condition.values, word, lowerCase) != condition.values.end();
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

/// What is taken by a condition on something that is never known: all or nothing.
template <class Limits>
Union<Limits> unknownKeeps(const Condition &condition)
{
    return condition.isRequired ? Union<Limits>() : Union<Limits>(1);
}

/// The union of limits by one number.
template <class Limits, Range Limits::*range>
Kept<Limits> keepNumbers(const Condition &condition, int, const Note &note)
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

Kept<SoundLimits> keepRates(const Condition &condition, int codec, const Note &note)
{
    return withSayableRates(
        *keepNumbers<SoundLimits, &SoundLimits::sampleRate>(condition, codec, note), note);
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

template <class Limits>
Kept<Limits> keepProfiles(const Condition &condition, int codec, const Note &note)
{
    if (kWithoutProfile.has(codec)) return unknownKeeps<Limits>(condition);
    const std::optional<int> profiles = profilesThatKeep(condition, codec, note);
    if (!profiles) return Union<Limits>{};
    Limits limits;
    limits.profiles = *profiles;
    return Union<Limits>{limits};
}

/// Levels have an upper end alone.
Kept<PictureLimits> keepLevels(const Condition &condition, int codec, const Note &note)
{
    constexpr int s_Mpeg2Levels[] = {4, 6, 8, 10}; // from high to low
    const auto kept = [&](int level) { return keeps(condition, level); };
    const Union<PictureLimits> none;
    noteUnknown(condition, note);
    if (codec == "mpeg2video"_codec) {
        if (std::ranges::all_of(s_Mpeg2Levels, kept)) return Union<PictureLimits>(1);
        note(Remark::Stricter, "the levels of MPEG-2 run backwards, so its files are transcoded");
        return none;
    }
    if (!knownLevels(codec).empty()) return levelsWhere(kept, codec, note);
    PictureLimits limits;
    if (condition.test == Condition::AtLeast && kept(1)) return Union<PictureLimits>{limits};
    limits.level = static_cast<int>(std::clamp<std::int64_t>(
        numberIn(condition.values.empty() ? "" : condition.values.front()).value_or(0), 0,
        std::numeric_limits<int>::max()));
    if (condition.test == Condition::AtMost && limits.level > 0)
        return Union<PictureLimits>{limits};
    note(Remark::Stricter,
         fmt::format("a rule limits levels upwards alone, so {} is transcoded", codecText(codec)));
    return none;
}

Kept<PictureLimits> keepDepths(const Condition &condition, int, const Note &note)
{
    if (!keeps(condition, 8)) {
        if (keeps(condition, 10) || keeps(condition, 12))
            note(Remark::Stricter, "no rule can turn away 8 bits alone, so all is transcoded");
        return Union<PictureLimits>{};
    }
    const bool has10 = keeps(condition, 10);
    const bool has12 = keeps(condition, 12);
    return refusing(has10 ? has12 ? "" : "12bit" : has12 ? "10bit" : "10bit|12bit");
}

Kept<PictureLimits> keepDynamics(const Condition &condition, int, const Note &note)
{
    const auto kept = [&](const char *type) { return keepsWord(condition, type); };
    if (!kept("sdr")) {
        note(Remark::Stricter, "no rule can turn away SDR alone, so all is transcoded");
        return Union<PictureLimits>{};
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

Kept<PictureLimits> keepInterlacing(const Condition &condition, int, const Note &note)
{
    return interlacingWhere(keepsWord(condition, "false"), keepsWord(condition, "true"),
                            "so all is transcoded", note);
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

Kept<SoundLimits> keepSampleBits(const Condition &condition, int codec, const Note &note)
{
    if (const int depth = pcmDepth(codec); depth > 0)
        return keeps(condition, depth) ? Union<SoundLimits>(1) : Union<SoundLimits>();
    if (kWithoutSampleBits.has(codec)) return unknownKeeps<SoundLimits>(condition);
    note(Remark::LeftOut, fmt::format("a Device profile doesn't limit the bits of a sample of {}",
                                      codecText(codec)));
    return std::nullopt;
}

constexpr auto s_KeepWidth = keepNumbers<PictureLimits, &PictureLimits::width>;
constexpr auto s_KeepHeight = keepNumbers<PictureLimits, &PictureLimits::height>;
constexpr auto s_KeepBitrate = keepNumbers<PictureLimits, &PictureLimits::bitrate>;
constexpr auto s_KeepSoundBitrate = keepNumbers<SoundLimits, &SoundLimits::bitrate>;
constexpr auto s_KeepChannels = keepNumbers<SoundLimits, &SoundLimits::channels>;
constexpr auto s_KeepPictureProfiles = keepProfiles<PictureLimits>;
constexpr auto s_KeepSoundProfiles = keepProfiles<SoundLimits>;

constexpr Property s_Properties[] = {
    {"AudioChannels", 0, nullptr, s_KeepChannels, nullptr},
    {"AudioBitrate", 1, nullptr, s_KeepSoundBitrate, nullptr, 1000},
    {"AudioProfile", 2, nullptr, s_KeepSoundProfiles, nullptr, 1, true},
    {"Width", 3, s_KeepWidth, nullptr, nullptr},
    {"Height", 4, s_KeepHeight, nullptr, nullptr},
    {"Has64BitOffsets", 5, nullptr, nullptr, "the size of offsets in the file"},
    {"PacketLength", 6, nullptr, nullptr, "the length of packets"},
    {"VideoBitDepth", 7, keepDepths, nullptr, nullptr},
    {"VideoBitrate", 8, s_KeepBitrate, nullptr, nullptr, 1000},
    {"VideoFramerate", 9, nullptr, nullptr, "the frame rate"},
    {"VideoLevel", 10, keepLevels, nullptr, nullptr, 1, true},
    {"VideoProfile", 11, s_KeepPictureProfiles, nullptr, nullptr, 1, true},
    {"VideoTimestamp", 12, nullptr, nullptr, "time stamps in a transport stream"},
    {"IsAnamorphic", 13, nullptr, nullptr, "the shape of pixels"},
    {"RefFrames", 14, nullptr, nullptr, "the number of reference frames"},
    {"NumAudioStreams", 16, nullptr, nullptr, "the number of audio tracks"},
    {"NumVideoStreams", 17, nullptr, nullptr, "the number of video tracks"},
    {"IsSecondaryAudio", 18, nullptr, nullptr, "which of several audio tracks is played"},
    {"VideoCodecTag", 19, nullptr, nullptr, "the codec's tag in the file"},
    {"IsAvc", 20, nullptr, nullptr, "how the units of a stream are set apart"},
    {"IsInterlaced", 21, keepInterlacing, nullptr, nullptr},
    {"AudioSampleRate", 22, nullptr, keepRates, nullptr, 8000},
    {"AudioBitDepth", 23, nullptr, keepSampleBits, nullptr},
    {"VideoRangeType", 24, keepDynamics, nullptr, nullptr},
    {"NumStreams", 25, nullptr, nullptr, "the number of streams"},
    {"VideoRotation", 26, nullptr, nullptr, "by how much a picture is turned"},
};

/// What keeps the condition by a property that may not be one of such streams.
template <class Limits>
Kept<Limits> keptBy(Property::Keep<Limits> keep, const char *stream, const Condition &condition,
                    int codec, const Note &note)
{
    if (keep) return keep(condition, codec, note);
    note(Remark::LeftOut,
         condition.property->unlimited
             ? fmt::format("a Device profile doesn't limit {}", condition.property->unlimited)
             : fmt::format("it is no property of {}", stream));
    return std::nullopt;
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
    const auto *const knownTest = findNamed(s_Tests, test.empty() ? "Equals" : test);
    const auto *const knownProperty = findNamed(s_Properties, property);
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
    if (condition.test != Condition::AnyOf) return condition;
    condition.values = splitList(value, '|');
    if (condition.values.size() > kMostValues)
        throw ImportError(file, object.line(),
                          fmt::format("{}Value lists more than any profile", object.place()));
    return condition;
}

template <>
Kept<PictureLimits> thatKeep(const Condition &condition, int codec, const Note &note)
{
    return keptBy(condition.property->pictures, "a picture", condition, codec, note);
}

template <>
Kept<SoundLimits> thatKeep(const Condition &condition, int codec, const Note &note)
{
    return keptBy(condition.property->sounds, "sound", condition, codec, note);
}

bool takesUnknown(const Condition &condition)
{
    return condition.property->takesUnknown;
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

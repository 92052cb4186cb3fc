#include "tools/import/jellyfin_condition.h"

#include "base/ascii_case.h"
#include "base/media_ids.h"
#include "platform/registry_names.h"
#include "tools/import/said_limits.h"
#include "tools/profile/codec_list.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"
#include "tools/profile/regular_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <limits>

namespace vornak::tool {

using Kept = std::optional<Union>;

/// What a property is to a Device profile.
struct JellyfinProperty {
    enum Stream { Picture, Sound, Neither };

    const char *name;
    int number; // that stands for the name
    Stream stream;
    Kept (*keep)(const JellyfinCondition &condition, int codec, const Note &note);
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

std::vector<std::int64_t> numbersIn(const Condition &condition)
{
    std::vector<std::int64_t> numbers;
    for (const std::string &value : condition.values)
        if (const auto number = numberIn(value)) numbers.push_back(*number);
    return numbers;
}

bool comparesNumbers(const Condition &condition)
{
    return condition.test == Condition::AtMost || condition.test == Condition::AtLeast;
}

/// Whether what the test says of any of the values must not be so.
bool isInverse(const Condition &condition)
{
    return (condition.test == Condition::NotEquals) != condition.isNegated;
}

/// The ranges of values from 1 that keep the condition, rising where it is an inverse.
std::vector<Range> rangesThatKeep(const Condition &condition)
{
    constexpr std::int64_t kEnd = std::numeric_limits<int>::max();
    std::vector<Range> ranges;
    const auto addRange = [&](std::int64_t least, std::int64_t most) {
        if (std::max<std::int64_t>(least, 1) > std::min(most, kEnd)) return;
        ranges.push_back(
            {static_cast<int>(least <= 1 ? 0 : least), static_cast<int>(most >= kEnd ? 0 : most)});
    };
    std::vector<std::int64_t> numbers = numbersIn(condition);
    const bool isInverted = isInverse(condition);
    if (isInverted && numbers.size() < condition.values.size()) return {};
    if (isInverted) std::ranges::sort(numbers);
    std::int64_t from = 1; // behind what mustn't be
    for (const std::int64_t number : numbers) {
        const std::int64_t value = std::clamp<std::int64_t>(number, -1, kEnd + 1);
        const std::int64_t least = condition.test == Condition::AtMost ? 1 : value;
        const std::int64_t most = condition.test == Condition::AtLeast ? kEnd : value;
        if (isInverted)
            addRange(from, least - 1);
        else
            addRange(least, most);
        from = most + 1;
    }
    if (isInverted) addRange(from, kEnd);
    return ranges;
}

/// Whether a known value keeps the condition.
bool keeps(const Condition &condition, int value)
{
    return std::ranges::any_of(rangesThatKeep(condition),
                               [value](Range range) { return contains(range, value); });
}

/// The same of words, in lower case, which have no order.
bool keepsWord(const Condition &condition, const char *word)
{
    if (comparesNumbers(condition)) return false;
    const bool isAny =
        std::ranges::find(condition.values, word, lowerCase) != condition.values.end();
    return isAny != isInverse(condition);
}

Union allOrNothing(bool isAll)
{
    return isAll ? Union{Limits{}} : Union{};
}

/// The union of limits by one number.
template <Range Limits::*range>
Kept keepNumbers(const Condition &condition, int, const Note &note)
{
    const std::vector<Range> ranges = rangesThatKeep(condition);
    const std::size_t understood = numbersIn(condition).size();
    if (understood == 0 || (condition.isNegated && understood < condition.values.size()))
        note.stricter("no number, so nothing keeps it");
    Union all;
    for (Range each : ranges) {
        if (condition.isRequired) each.least = std::max(each.least, condition.property->least);
        Limits limits;
        limits.*range = each;
        add(all, limits);
    }
    return all;
}

Kept keepRates(const Condition &condition, int codec, const Note &note)
{
    return withSayableRates(*keepNumbers<&Limits::sampleRate>(condition, codec, note), note);
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
        note.looser("files of which it isn't known are taken, too");
}

Kept keepProfiles(const Condition &condition, int codec, const Note &note)
{
    // what is never known keeps a condition that doesn't require it
    if (kWithoutProfile.has(codec)) return allOrNothing(!condition.isRequired);
    const int known = allProfilesOf(codec);
    if (known == 0) {
        note.leftOut("no profiles of {} are known", codecText(codec));
        return allOrNothing(!condition.isRequired);
    }
    int named = 0;
    for (const std::string &value : condition.values) {
        named |= profileBit(codec, value);
        if (isProfileOfAny(value)) continue;
        const std::string why =
            fmt::format("no profile is known by the name \"{}\"", printable(value));
        isInverse(condition) ? note.leftOut("{}", why) : note.stricter("{}", why);
    }
    if (comparesNumbers(condition)) return Union{};
    Limits limits;
    limits.profiles = isInverse(condition) ? known & ~named : named;
    if (limits.profiles == 0) return Union{};
    noteUnknown(condition, note);
    if (limits.profiles == known) limits.profiles = 0;
    return Union{limits};
}

/// Levels have an upper end alone.
Kept keepLevels(const Condition &condition, int codec, const Note &note)
{
    constexpr int s_Mpeg2Levels[] = {4, 6, 8, 10}; // from high to low
    const auto kept = [&](int level) { return keeps(condition, level); };
    if (numbersIn(condition).empty()) {
        const std::string text = condition.values.empty() ? "" : condition.values.front();
        const std::optional<int> meant = codedLevel(codec, text);
        note.stricter("no level as a stream has it, so nothing keeps it{}",
                      meant ? fmt::format("; {} is written {}", text, *meant) : "");
        return Union{};
    }
    noteUnknown(condition, note);
    if (codec == "mpeg2video"_codec) {
        const bool areAll = std::ranges::all_of(s_Mpeg2Levels, kept);
        if (!areAll)
            note.stricter("the levels of MPEG-2 run backwards, so its files are transcoded");
        return allOrNothing(areAll);
    }
    if (!knownLevels(codec).empty()) return levelsWhere(kept, codec, note);
    const std::vector<Range> ranges = rangesThatKeep(condition);
    Limits limits;
    if (comparesNumbers(condition) && !ranges.empty() && ranges.front().least == 0) {
        limits.level = ranges.front().most;
        return Union{limits};
    }
    note.stricter("a rule limits levels upwards alone, so {} is transcoded", codecText(codec));
    return Union{};
}

Kept keepDepths(const Condition &condition, int, const Note &note)
{
    const bool has10 = keeps(condition, 10);
    const bool has12 = keeps(condition, 12);
    if (keeps(condition, 8))
        return refusing(has10 ? has12 ? "" : "12bit" : has12 ? "10bit" : "10bit|12bit");
    if (has10 || has12) note.stricter("no rule can turn away 8 bits alone, so all is transcoded");
    return Union{};
}

Kept keepDynamics(const Condition &condition, int, const Note &note)
{
    const auto kept = [&](const char *type) { return keepsWord(condition, type); };
    if (!kept("sdr")) {
        note.stricter("no rule can turn away SDR alone, so all is transcoded");
        return Union{};
    }
    const bool hdr10 = kept("hdr10") && (!isInverse(condition) || kept("hdr10plus"));
    const bool hlg = kept("hlg");
    if (hdr10 != hlg)
        note.stricter("HDR10 and HLG are one to a Device profile, so both are transcoded");
    if (!kept("doviwithsdr") || !kept("doviwithhdr10") || !kept("doviwithhlg"))
        note.looser("Dolby Vision over SDR, HDR10 or HLG counts as these");
    return refusing(hdr10 && hlg   ? kept("dovi") ? "" : "dolby_vision"
                    : kept("dovi") ? "hdr"
                                   : "hdr|dolby_vision");
}

Kept keepInterlacing(const Condition &condition, int, const Note &note)
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

Kept keepSampleBits(const Condition &condition, int codec, const Note &note)
{
    if (const int depth = pcmDepth(codec); depth > 0) return allOrNothing(keeps(condition, depth));
    if (kWithoutSampleBits.has(codec)) return allOrNothing(!condition.isRequired);
    note.leftOut("a Device profile doesn't limit the bits of a sample of {}", codecText(codec));
    return std::nullopt;
}

constexpr Property s_Properties[] = {
    {"AudioChannels", 0, Property::Sound, keepNumbers<&Limits::channels>, nullptr},
    {"AudioBitrate", 1, Property::Sound, keepNumbers<&Limits::bitrate>, nullptr, 1000},
    {"AudioProfile", 2, Property::Sound, keepProfiles, nullptr, 1, true},
    {"Width", 3, Property::Picture, keepNumbers<&Limits::width>, nullptr},
    {"Height", 4, Property::Picture, keepNumbers<&Limits::height>, nullptr},
    {"Has64BitOffsets", 5, Property::Neither, nullptr, "the size of offsets in the file"},
    {"PacketLength", 6, Property::Neither, nullptr, "the length of packets"},
    {"VideoBitDepth", 7, Property::Picture, keepDepths, nullptr},
    {"VideoBitrate", 8, Property::Picture, keepNumbers<&Limits::bitrate>, nullptr, 1000},
    {"VideoFramerate", 9, Property::Neither, nullptr, "the frame rate"},
    {"VideoLevel", 10, Property::Picture, keepLevels, nullptr, 1, true},
    {"VideoProfile", 11, Property::Picture, keepProfiles, nullptr, 1, true},
    {"VideoTimestamp", 12, Property::Neither, nullptr, "time stamps in a transport stream"},
    {"IsAnamorphic", 13, Property::Neither, nullptr, "the shape of pixels"},
    {"RefFrames", 14, Property::Neither, nullptr, "the number of reference frames"},
    {"NumAudioStreams", 16, Property::Neither, nullptr, "the number of audio tracks"},
    {"NumVideoStreams", 17, Property::Neither, nullptr, "the number of video tracks"},
    {"IsSecondaryAudio", 18, Property::Neither, nullptr, "which of several audio tracks is played"},
    {"VideoCodecTag", 19, Property::Neither, nullptr, "the codec's tag in the file"},
    {"IsAvc", 20, Property::Neither, nullptr, "how the units of a stream are set apart"},
    {"IsInterlaced", 21, Property::Picture, keepInterlacing, nullptr},
    {"AudioSampleRate", 22, Property::Sound, keepRates, nullptr, 8000},
    {"AudioBitDepth", 23, Property::Sound, keepSampleBits, nullptr},
    {"VideoRangeType", 24, Property::Picture, keepDynamics, nullptr},
    {"NumStreams", 25, Property::Neither, nullptr, "the number of streams"},
    {"VideoRotation", 26, Property::Neither, nullptr, "by how much a picture is turned"},
};

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
        Note(player.remarks, file, object.line(), said)
            .leftOut("no {} is known by the name \"{}\"", knownTest ? "property" : "comparison",
                     printable(knownTest ? property : test));
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
        throw ProfileError(file, object.line(),
                           fmt::format("{}Value lists more than any profile", object.place()));
    return condition;
}

Kept thatKeep(const Condition &condition, int codec, const Note &note)
{
    const Property &property = *condition.property;
    const auto stream = isPicture(codec) ? Property::Picture : Property::Sound;
    // what is to be none of no values is anything
    if (condition.isNegated && condition.values.empty()) return allOrNothing(true);
    if (property.stream == stream) return property.keep(condition, codec, note);
    if (property.unlimited)
        note.leftOut("a Device profile doesn't limit {}", property.unlimited);
    else
        note.leftOut("it is no property of {}", isPicture(codec) ? "a picture" : "sound");
    return std::nullopt;
}

Kept thatKeepExactly(const Condition &condition, int codec)
{
    std::set<Remark> inexact;
    Kept kept = thatKeep(condition, codec, Note(inexact, {}, 0, {}));
    return inexact.empty() ? kept : std::nullopt;
}

Condition negationOf(Condition condition)
{
    condition.isRequired = !condition.isRequired;
    condition.isNegated = !condition.isNegated;
    return condition;
}

bool takesUnknown(const Condition &condition)
{
    return condition.property->takesUnknown;
}

} // namespace vornak::tool

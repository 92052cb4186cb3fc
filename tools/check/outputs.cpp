// Whether the profile keeps what its first rules make.
#include "tools/check/checks.h"

#include "decision/comparison.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "profile/attribute_value.h"
#include "tools/check/option_words.h"
#include "tools/check/transcoder.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <string>
#include <string_view>

namespace vornak::tool {
namespace {

using Names = std::initializer_list<std::string_view>;

/// What an OPTION says of its output: values, and for each the words that say it.
template <class Source>
struct Output {
    struct Stated {
        int Source::*property;
        std::string words;
    };

    Source source{};
    std::vector<Stated> stated;

    void state(int Source::*property, int value, std::string words)
    {
        source.*property = value;
        stated.push_back({property, std::move(words)});
    }
    const Stated *find(int Source::*property) const
    {
        const auto found = std::ranges::find(stated, property, &Stated::property);
        return found == stated.end() ? nullptr : &*found;
    }
};

template <class Source>
void stateNumber(Output<Source> &output, std::string_view text, Names names, int Source::*property)
{
    const auto value = optionValue(text, names);
    const auto number = value ? optionNumber(*value) : std::nullopt;
    constexpr double kMost = std::numeric_limits<int>::max();
    if (number)
        output.state(property, static_cast<int>(std::clamp(*number, 0.0, kMost)),
                     fmt::format("{} {}", *names.begin(), excerpt(*value)));
}

template <class Source>
void stateProfile(Output<Source> &output, int codecId, const std::string &name, std::string words)
{
    int bit = 0;
    if (codecHasProfile(codecId, name.c_str()) && ProfileNameToID(name.c_str(), &bit) == 0)
        output.state(&Source::profileId, bit, std::move(words));
}

// ---- pictures ----------------------------------------------------------------------------

// What encoders make of pixel formats, the better ones below.
constexpr struct PictureProfile {
    std::string_view encoder;
    const char *profile;
    Pixels most;        ///< that it can hold
    bool isChosen;      ///< where OPTION names none
    const char *pixels; ///< to be written
} s_PictureProfiles[] = {
    {"libx264", "baseline", {8, 420}, false, "yuv420p"},
    {"libx264", "main", {8, 420}, false, "yuv420p"},
    {"libx264", "high", {8, 420}, true, "yuv420p"},
    {"libx264", "high10", {10, 420}, true, "yuv420p10le"},
    {"libx264", "high422", {10, 422}, true, "yuv422p10le"},
    {"libx264", "high444", {10, 444}, true, "yuv444p10le"},
    {"libx265", "main", {8, 420}, true, "yuv420p"},
    {"libx265", "main10", {10, 420}, true, "yuv420p10le"},
};

bool holds(const PictureProfile &row, Pixels pixels)
{
    return pixels.depth <= row.most.depth && pixels.chroma <= row.most.chroma;
}

/// The format that OPTION asks for, by an option or a filter; nothing: that of the source.
std::optional<std::string_view> pixelFormatIn(std::string_view text)
{
    if (const auto value = optionValue(text, Names{"-pix_fmt", "-pix_fmt:v"})) return value;
    const auto filters = optionValue(text, Names{"-vf", "-filter:v"});
    const std::size_t at = filters ? filters->rfind("format=") : std::string_view::npos;
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view name = filters->substr(at + 7);
    return name.substr(0, name.find_first_of(",|:"));
}

/// The profile that the encoder chooses; null: it depends on more than is looked at here.
const char *chosenProfile(std::string_view text, std::string_view encoder, Pixels pixels)
{
    constexpr std::string_view s_Deciding[] = {"-x264-params", "-x264opts", "-x265-params",
                                               "-coder",       "-8x8dct",   "-tune"};
    if (optionValue(text, s_Deciding) || optionValue(text, "-preset") == "ultrafast")
        return nullptr;
    for (const PictureProfile &row : s_PictureProfiles)
        if (row.encoder == encoder && row.isChosen && holds(row, pixels)) return row.profile;
    return nullptr;
}

void statePictureProfile(Output<VideoSource> &output, int codecId, std::string_view text)
{
    if (const auto value = optionValue(text, s_PictureProfileOptions))
        return stateProfile(output, codecId, std::string(*value),
                            fmt::format("-profile:v {}", excerpt(*value)));
    const auto encoder = optionValue(text, s_VideoCodecOptions);
    const auto format = pixelFormatIn(text);
    const auto pixels = format ? pixelsCalled(std::string(*format)) : Pixels{8, 420};
    const char *profile = encoder && pixels ? chosenProfile(text, *encoder, *pixels) : nullptr;
    if (profile)
        stateProfile(output, codecId, profile,
                     fmt::format("-c:v {}, by itself of profile {},", *encoder, profile));
}

void stateExceptions(Output<VideoSource> &output, std::string_view text)
{
    const auto format = pixelFormatIn(text);
    const auto pixels = format ? pixelsCalled(std::string(*format)) : std::nullopt;
    if (!pixels) return;
    const struct {
        bool isMade;
        const char *name;
    } exceptions[] = {{pixels->depth > 8 && pixels->depth <= 10, "10bit"},
                      {pixels->depth > 10, "12bit"},
                      {pixels->chroma == 422, "chroma422"},
                      {pixels->chroma == 444, "chroma444"}};
    int bits = 0;
    for (const auto &exception : exceptions) {
        int bit = 0;
        if (exception.isMade && PlayExceptionNameToID(exception.name, &bit) == 0) bits |= bit;
    }
    output.state(&VideoSource::codecFlag, bits, fmt::format("-pix_fmt {}", excerpt(*format)));
}

/// A level of H.264 or HEVC, written as 4.1; the streams count in tenths or thirtieths.
void stateLevel(Output<VideoSource> &output, int codecId, std::string_view text)
{
    const auto value = optionValue(text, Names{"-level", "-level:v", "-vlevel"});
    const double level = value ? optionNumber(*value).value_or(0) : 0;
    const LevelScale *scale = levelScaleOf(codecId);
    if (level <= 0 || !scale) return;
    const double coded = level < 10 ? level * scale->factor : level;
    output.state(&VideoSource::level, static_cast<int>(std::lround(std::min(coded, 1e6))),
                 fmt::format("-level {}", excerpt(*value)));
}

/// "1280x720" or "1280:720", whatever follows; nothing for a formula.
std::optional<std::pair<int, int>> sizeIn(std::string_view text, char between)
{
    int width = 0, height = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, width);
    if (error != std::errc() || stop == end || *stop != between) return std::nullopt;
    const auto [rest, error2] = std::from_chars(stop + 1, end, height);
    if (error2 != std::errc() || (rest != end && *rest != ':' && *rest != ',')) return std::nullopt;
    return std::pair{width, height};
}

void stateSize(Output<VideoSource> &output, std::string_view text)
{
    const auto filters = optionValue(text, Names{"-vf", "-filter:v"});
    const std::size_t scale = filters ? filters->rfind("scale=") : std::string_view::npos;
    const auto option = optionValue(text, Names{"-s", "-s:v"});
    const auto size = option                            ? sizeIn(*option, 'x')
                      : scale != std::string_view::npos ? sizeIn(filters->substr(scale + 6), ':')
                                                        : std::nullopt;
    if (!size || size->first <= 0 || size->second <= 0) return;
    const std::string words = fmt::format("{} {}", option ? "-s" : "-vf",
                                          excerpt(option ? *option : filters->substr(scale)));
    output.state(&VideoSource::width, size->first, words);
    output.state(&VideoSource::height, size->second, words);
}

Output<VideoSource> outputOf(const VideoRule &rule)
{
    const std::string_view text = textOf(rule.option);
    Output<VideoSource> output;
    stateNumber(output, text, {"-b:v", "-vb"}, &VideoSource::bitrate);
    statePictureProfile(output, rule.vCodecId, text);
    stateLevel(output, rule.vCodecId, text);
    stateSize(output, text);
    stateExceptions(output, text);
    return output;
}

// ---- sounds ------------------------------------------------------------------------------

Output<AudioSource> outputOf(const AudioRule &rule)
{
    const std::string_view text = textOf(rule.option);
    Output<AudioSource> output;
    stateNumber(output, text, {"-ac", "-ac:a"}, &AudioSource::channels);
    stateNumber(output, text, {"-ar", "-ar:a"}, &AudioSource::sampleRate);
    stateNumber(output, text, {"-b:a", "-ab"}, &AudioSource::bitrate);
    const auto profile = optionValue(text, Names{"-profile:a", "-aprofile"});
    const auto encoder = optionValue(text, s_AudioCodecOptions);
    if (profile)
        stateProfile(output, rule.aCodecId,
                     std::string(*profile).substr(profile->find("aac_") == 0 ? 4 : 0),
                     fmt::format("-profile:a {}", excerpt(*profile)));
    else if (encoder == "aac" || encoder == "libfdk_aac")
        stateProfile(output, rule.aCodecId, "lc",
                     fmt::format("-c:a {}, by itself of profile lc,", *encoder));
    return output;
}

// ---- both --------------------------------------------------------------------------------

/// The words that say what a comparison looks at; null: it looks at what isn't said.
template <class Rule, class Source>
const std::string *wordsFor(const Comparison<Rule, Source> &row, const Output<Source> &output)
{
    for (const auto *part : {row.first, row.second})
        if (const auto *stated = part ? output.find(part->bounded) : nullptr) return &stated->words;
    return nullptr;
}

/// Whether the limit is none that was meant, and another finding says so.
bool isMisread(pugi::xml_node element, const char *name)
{
    const char *text = element.attribute(name).value();
    const Unit unit = findAttribute(name)->unit;
    if (unit == Unit::ProfileBits || unit == Unit::ExceptionBits) return false;
    const Number number = readNumber(unit, text);
    const LevelScale *scale = levelScaleOf(codecOf(element).value_or(kAnyCodec));
    const bool isLevel = scale && name == std::string_view("LEVEL");
    return *number.end != '\0' ||
           (isLevel && std::ranges::find(scale->levels, number.value) == scale->levels.end());
}

/// Reports the limits of the first rule that turn its own output away, unless a later rule takes
/// it.
template <const auto &Table, class Rule>
void checkOutput(std::span<const RulePlace<Rule>> rules, Report &report)
{
    if (rules.empty() || idOf(*rules.front().record) == kAnyCodec) return;
    const Rule &first = *rules.front().record;
    const auto output = outputOf(first);
    const auto refuses = [&](const auto &row, const Rule &rule) {
        return wordsFor(row, output) && !vornak::holds(row, rule, output.source);
    };
    for (const RulePlace<Rule> &rule : rules.subspan(1)) {
        const int codec = idOf(*rule.record);
        if ((codec == idOf(first) || codec == kAnyCodec) &&
            std::ranges::none_of(Table,
                                 [&](const auto &row) { return refuses(row, *rule.record); }))
            return;
    }
    const pugi::xml_node element = rules.front().element;
    for (const auto &row : Table) {
        if (!refuses(row, first)) continue;
        const auto *part = row.second && keepsBound(row.first->bound, row.first->in(output.source),
                                                    row.first->in(first))
                               ? row.second
                               : row.first;
        if (isMisread(element, part->attribute)) continue;
        report.add(Fault::OptionLimit, element, element.attribute("OPTION"),
                   fmt::format("{} makes what {} of this rule turns away", *wordsFor(row, output),
                               shown(element.attribute(part->attribute))),
                   "a transcoded file would be transcoded again: change one of the two");
    }
}

} // namespace

void checkVideoOutput(std::span<const RulePlace<VideoRule>> rules, Report &report)
{
    checkOutput<s_VideoComparisons>(rules, report);
}

void checkAudioOutput(std::span<const RulePlace<AudioRule>> rules, Report &report)
{
    checkOutput<s_AudioComparisons>(rules, report);
}

void checkPixels(const Place &place, Report &report)
{
    const std::string_view text = textOf(place.video.record->option);
    const auto profile = optionValue(text, s_PictureProfileOptions);
    const auto encoder = optionValue(text, s_VideoCodecOptions);
    if (!profile || !encoder || place.video.position != 0) return;
    for (const PictureProfile &row : s_PictureProfiles) {
        if (row.encoder != *encoder || row.profile != *profile) continue;
        const auto format = pixelFormatIn(text);
        const auto pixels = format ? pixelsCalled(std::string(*format)) : std::nullopt;
        if (format && (!pixels || holds(row, *pixels))) return;
        report.add(
            Fault::OptionPixels, place.video.element, place.video.element.attribute("OPTION"),
            format ? fmt::format("-profile:v {} can't hold {}, and {} fails", row.profile,
                                 excerpt(*format), row.encoder)
                   : fmt::format("without -pix_fmt {} is given the source's pixels, and fails "
                                 "where -profile:v {} can't hold them",
                                 row.encoder, row.profile),
            fmt::format("write -pix_fmt {}", row.pixels));
        return;
    }
}

void checkPcm(const Place &place, Report &report)
{
    const AudioRule &rule = *place.audio.record;
    const std::string_view text = textOf(rule.option);
    const auto encoder = optionValue(text, s_AudioCodecOptions);
    if (place.video.record || place.audio.position != 0 || !encoder ||
        !encoder->starts_with("pcm_"))
        return;
    std::vector<const char *> lacking;
    for (const char *option : {"-ar", "-ac"})
        if (!optionValue(text, option)) lacking.push_back(option);
    if (lacking.empty()) return;
    report.add(Fault::OptionPcm, place.audio.element, place.audio.element.attribute("OPTION"),
               fmt::format("OPTION has no {}, so the size of the output can't be told before it is "
                           "made",
                           fmt::join(lacking, " and no ")),
               "add them, such as -ar 44100 -ac 2");
}

} // namespace vornak::tool

// Whether what is transcoded into is described, and makes what the player takes.
#include "tools/check/checks.h"

#include "cmdline/limit_slots.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "tools/check/option_words.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <string>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr std::string_view s_VideoCodecOptions[] = {"-c:v", "-codec:v", "-vcodec", "-c:v:0"};
constexpr std::string_view s_AudioCodecOptions[] = {"-c:a", "-codec:a", "-acodec", "-c:a:0"};

std::string_view textOf(const char *option)
{
    return option ? option : "";
}

std::string nameOf(pugi::xml_node element)
{
    return excerpt(element.attribute("NAME").value());
}

void reportNoEffect(pugi::xml_node element, const char *attribute, std::string_view reason,
                    const char *advice, Report &report)
{
    report.add(Fault::NoEffect, element, element.attribute(attribute),
               fmt::format("{} has no effect here: {}", attribute, reason), advice);
}

/// What a codec rule is, whichever of the two kinds.
struct Target {
    pugi::xml_node element;
    int codecId;
    int position;
    std::string_view option;
    std::span<const std::string_view> codecOptions;
    const char *codecOption; ///< the usual one of them
};

void checkEncoder(const Target &target, Report &report)
{
    const pugi::xml_attribute attribute = target.element.attribute("OPTION");
    const auto encoder = optionValue(target.option, target.codecOptions);
    if (!encoder) {
        if (target.position == 0)
            report.add(Fault::TargetWithoutOption, target.element, attribute,
                       fmt::format("OPTION has no {}: the transcoder chooses the codec by itself",
                                   target.codecOption),
                       fmt::format("name an encoder of {}", nameOf(target.element)));
        return;
    }
    const auto made = encodedCodec(*encoder);
    if ((made && *made == target.codecId) || (!made && *encoder != "copy")) return;
    report.add(Fault::OptionCodec, target.element, attribute,
               fmt::format("{} {} does not make {}", target.codecOption, excerpt(*encoder),
                           nameOf(target.element)),
               fmt::format("name an encoder of {}", nameOf(target.element)));
}

/// What the first rule of a list is for.
std::string firstRuleSays(pugi::xml_node element)
{
    const std::string_view parent = element.parent().name();
    if (parent == "VIDEO") return "the first VCODEC says what the picture is transcoded into";
    if (parent == "MUSIC") return "the first ACODEC of MUSIC says what music is transcoded into";
    return "the first ACODEC of a VCODEC says what its sound is transcoded into";
}

void checkTarget(const Target &target, Report &report)
{
    const bool isTarget = target.position == 0;
    if (target.codecId == kAnyCodec) {
        if (isTarget)
            report.add(Fault::TargetWildcard, target.element, target.element.attribute("NAME"),
                       firstRuleSays(target.element) + ", and a wildcard says nothing",
                       "put a rule with a codec before it");
        if (!target.option.empty())
            reportNoEffect(target.element, "OPTION", "nothing is transcoded to a wildcard",
                           "remove it", report);
        return;
    }
    if (!target.option.empty()) return checkEncoder(target, report);
    if (isTarget)
        report.add(Fault::TargetWithoutOption, target.element,
                   firstRuleSays(target.element) + ", and this one has no OPTION",
                   fmt::format("add OPTION=\"{} ...\"", target.codecOption));
}

void reportLimit(pugi::xml_node element, std::string_view option, std::string_view value,
                 const char *attribute, Report &report)
{
    report.add(Fault::OptionLimit, element, element.attribute("OPTION"),
               fmt::format("{} {} makes what {} of this rule turns away", option, excerpt(value),
                           shown(element.attribute(attribute))),
               "a transcoded file would be transcoded again: change one of the two");
}

/// The name of an option whose text has a blank on either side.
std::string_view nameOf(const Option &option)
{
    return std::string_view(option.text).substr(1, std::string_view(option.text).size() - 2);
}

/// Reports options whose values a limit of the same rule turns away.
template <class Rule>
void checkOptionLimits(const auto &limits, const Rule &rule, pugi::xml_node element, Report &report)
{
    for (const auto &[comparison, slot] : limits) {
        const auto &property = *comparison.first;
        const Option &option = s_SlotOptions[slot].first;
        if (option.form != Form::Value) continue;
        const int limit = property.in(rule);
        const auto value = optionValue(textOf(rule.option), nameOf(option));
        const auto number = value ? optionNumber(*value) : std::nullopt;
        if (!number || limit <= 0) continue;
        if (property.bound == Bound::AtMost ? *number > limit : *number < limit)
            reportLimit(element, nameOf(option), *value, property.attribute, report);
    }
}

void checkOptionProfile(int codecId, int profiles, std::string_view option, std::string_view value,
                        pugi::xml_node element, Report &report)
{
    const std::string name(value);
    int bit = 0;
    if (profiles <= 0 || ProfileNameToID(name.c_str(), &bit) != 0) return;
    if (codecHasProfile(codecId, name.c_str()) && (bit & profiles) == 0)
        reportLimit(element, option, value, "PROFILE", report);
}

constexpr std::string_view s_LevelOptions[] = {"-level", "-level:v"};

/// A level of H.264 or HEVC, written as 4.1; the streams count in tenths or thirtieths.
void checkOptionLevel(const VideoRule &rule, pugi::xml_node element, Report &report)
{
    const auto value = optionValue(textOf(rule.option), s_LevelOptions);
    const auto level = value ? optionNumber(*value) : std::nullopt;
    if (!level || rule.vLevel <= 0) return;
    const LevelScale *scale = levelScaleOf(rule.vCodecId);
    if (!scale) return;
    const double coded = *level < 10 ? *level * scale->factor : *level;
    if (std::lround(coded) > rule.vLevel) reportLimit(element, "-level", *value, "LEVEL", report);
}

void checkForbidden(int noTranscode, pugi::xml_node element, const char *effect, Report &report)
{
    if (noTranscode == 1)
        report.add(Fault::TargetForbidden, element, element.attribute("NOTRANSCODE"),
                   fmt::format("NOTRANSCODE here {}", effect),
                   "remove it, unless files that don't fit are to be refused");
}

void checkMuxer(const ContainerEntry &entry, pugi::xml_node element, Report &report)
{
    const auto muxer = optionValue(textOf(entry.option), "-f");
    const auto made = muxer ? containerWrittenBy(*muxer) : std::nullopt;
    if (!made || entry.formatId == kAnyContainer) return;
    const bool subtypeIsSet = optionValue(textOf(entry.option), "-brand").has_value();
    const bool needsSubtype = subtypePart(entry.formatId) != 0 && !subtypeIsSet;
    if (*made == containerPart(entry.formatId) &&
        (!needsSubtype || writesSubtype(*muxer, entry.formatId)))
        return;
    report.add(
        Fault::OptionContainer, element, element.attribute("OPTION"),
        fmt::format("-f {} does not make {}", excerpt(*muxer), containerText(entry.formatId)),
        "name the format that NAME and SUBTYPE say");
}

/// The container that everything goes into which isn't sent as it is.
void checkFirstContainer(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    const bool isTarget = place.audio.position == 0;
    if (isTarget)
        checkForbidden(entry.noTranscode, element,
                       "refuses every file whose sound needs transcoding", report);
    // kept sound beside a transcoded picture comes into its own first container
    const bool takesPicture = place.video.record && place.video.position == 0;
    if (entry.formatId == kAnyContainer && (isTarget || takesPicture))
        report.add(Fault::TargetWildcard, element, element.attribute("NAME"),
                   "the first container says what is made, and a wildcard says nothing",
                   "put a container before it");
    if (entry.formatId == kAnyContainer || entry.noTranscode == 1) return;
    if (!optionValue(textOf(entry.option), "-f"))
        report.add(Fault::ContainerWithoutOption, element, element.attribute("OPTION"),
                   "what is put into the first container needs an OPTION with -f",
                   "add OPTION=\"-f ...\"");
}

/// The containers for which DLNA names profiles, with the codec that they hold.
constexpr struct {
    int containerId, codecId;
    const char *example;
} s_NamedByDlna[] = {
    {"mp3"_container, "mp3"_codec, "MP3"},
    {"adts"_container, "aac"_codec, "AAC_ADTS"},
    {"mp4"_container, "aac"_codec, "AAC_ISO"},
    {"ac3"_container, "ac3"_codec, "AC3"},
    {"asf"_container, "wmav2"_codec, "WMABASE"},
    {"mpegps"_container, "mpeg1video"_codec, "MPEG1"},
    {"mpegps"_container, "mpeg2video"_codec, "MPEG_PS_PAL"},
    {"mpegts"_container, "mpeg2video"_codec, "MPEG_TS_SD_EU_ISO"},
    {"mpegts"_container, "h264"_codec, "AVC_TS_MP_HD_AC3_ISO"},
    {"mp4"_container, "h264"_codec, "AVC_MP4_MP_SD_AAC_MULT5"},
    {"mp4"_container, "mpeg4"_codec, "MPEG4_P2_MP4_ASP_AAC"},
    {"asf"_container, "wmv3"_codec, "WMVMED_FULL"},
    {"asf"_container, "vc1"_codec, "VC1_ASF_AP_L1_WMA"},
};

const char *dlnaExample(int containerId, int codecId)
{
    for (const auto &row : s_NamedByDlna)
        if (row.containerId == containerId && row.codecId == codecId) return row.example;
    return nullptr;
}

} // namespace

void checkVideoTarget(const Place &place, Report &report)
{
    const VideoRule &rule = *place.video.record;
    const pugi::xml_node element = place.video.element;
    checkTarget({element, rule.vCodecId, place.video.position, textOf(rule.option),
                 s_VideoCodecOptions, "-c:v"},
                report);
    if (place.video.position != 0) return;
    checkForbidden(rule.noTranscode, element, "refuses every file that needs transcoding", report);
    checkOptionLimits(s_VideoLimits, rule, element, report);
    checkOptionLevel(rule, element, report);
    for (const std::string_view option : {"-profile:v", "-vprofile"})
        if (const auto value = optionValue(textOf(rule.option), option))
            checkOptionProfile(rule.vCodecId, rule.vProfileId, option, *value, element, report);
}

void checkAudioTarget(const Place &place, Report &report)
{
    const AudioRule &rule = *place.audio.record;
    const pugi::xml_node element = place.audio.element;
    checkTarget({element, rule.aCodecId, place.audio.position, textOf(rule.option),
                 s_AudioCodecOptions, "-c:a"},
                report);
    if (rule.noTranscode != 0)
        reportNoEffect(element, "NOTRANSCODE", "no decision looks at it",
                       "write it at the VCODEC, or at the first FORMAT", report);
    if (place.audio.position == 0) checkOptionLimits(s_AudioLimits, rule, element, report);
}

void checkContainerTarget(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    checkMuxer(entry, element, report);
    if (entry.formatId == kAnyContainer && entry.option)
        reportNoEffect(element, "OPTION", "the usual one of the source's container is taken",
                       "remove it", report);
    if (place.entry.position == 0)
        checkFirstContainer(place, report);
    else if (entry.noTranscode != 0)
        reportNoEffect(element, "NOTRANSCODE", "that of the first FORMAT alone counts",
                       "write it at the first FORMAT, or remove it", report);
}

void checkAnnouncement(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    if (entry.formatId == kAnyContainer) return;
    if (!entry.mime)
        report.add(Fault::MimeMissing, place.entry.element,
                   fmt::format("{} is announced without a MIME type", nameOf(place.entry.element)),
                   "add MIME");
    const int codecId =
        place.video.record ? place.video.record->vCodecId : place.audio.record->aCodecId;
    if (const char *example = dlnaExample(containerPart(entry.formatId), codecId);
        example && !entry.pn)
        report.add(Fault::PnMissing, place.entry.element,
                   fmt::format("{} is announced without a DLNA profile name, and there are such",
                               nameOf(place.entry.element)),
                   fmt::format("add PN, such as {}", example));
}

} // namespace vornak::tool

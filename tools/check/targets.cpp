// Whether what is transcoded into is described, and is what it is called.
#include "tools/check/checks.h"

#include "base/media_ids.h"
#include "tools/check/option_words.h"
#include "tools/check/transcoder.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include <fmt/format.h>
#include <iterator>
#include <string>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr const char *kVideoOption = "-c:v", *kAudioOption = "-c:a";

std::string nameOf(pugi::xml_node element)
{
    return excerpt(element.attribute("NAME").value());
}

/// "name an encoder of mp3, such as libmp3lame"
std::string encoderAdvice(pugi::xml_node element, int codecId)
{
    const std::string usual = usualEncoder(codecId);
    return fmt::format("name an encoder of {}{}", nameOf(element),
                       usual.empty() ? "" : ", such as " + usual);
}

/// @param option  empty: there is none
std::string optionAdvice(const std::string &option)
{
    return option.empty() ? "put something before it that ffmpeg makes"
                          : fmt::format("add OPTION=\"{}\"", option);
}

/// The option by which ffmpeg makes the container; empty: it can't.
std::string usualOption(const Place &place)
{
    return containerOption(place.entry.record->formatId, place.audio.record->aCodecId,
                           !place.video.record);
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

void reportNoEncoder(const Target &target, pugi::xml_attribute attribute, Report &report)
{
    if (const auto any = optionValue(target.option, {"-c", "-codec"}); any && !any->empty())
        return report.add(
            Fault::TargetWithoutOption, target.element, attribute,
            fmt::format("-c {} is said of all streams, and not of this kind", excerpt(*any)),
            fmt::format("write {} {}", target.codecOption, excerpt(*any)));
    report.add(Fault::TargetWithoutOption, target.element, attribute,
               fmt::format("OPTION has no {}: the transcoder chooses the codec by itself",
                           target.codecOption),
               encoderAdvice(target.element, target.codecId));
}

void checkEncoder(const Target &target, Report &report)
{
    const pugi::xml_attribute attribute = target.element.attribute("OPTION");
    const auto encoder = optionValue(target.option, target.codecOptions);
    if (!encoder) {
        if (target.position == 0) reportNoEncoder(target, attribute, report);
        return;
    }
    const auto made = encodedCodec(*encoder);
    if (made == target.codecId || (!made && *encoder != "copy")) return;
    report.add(Fault::OptionCodec, target.element, attribute,
               fmt::format("{} {} does not make {}", target.codecOption, excerpt(*encoder),
                           nameOf(target.element)),
               encoderAdvice(target.element, target.codecId));
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
    // by the options of uncompressed sound the size of a remuxed file is told
    const bool isLength =
        optionValue(target.option, target.codecOptions).value_or("").starts_with("pcm_");
    if (!isTarget && !target.option.empty() && target.codecOption == kAudioOption && !isLength)
        reportNoEffect(target.element, "OPTION", firstRuleSays(target.element),
                       "remove it, or put the rule first", report);
    if (!target.option.empty()) return checkEncoder(target, report);
    const std::string usual = usualEncoder(target.codecId);
    if (isTarget)
        report.add(
            Fault::TargetWithoutOption, target.element,
            firstRuleSays(target.element) + ", and this one has no OPTION",
            optionAdvice(usual.empty() ? "" : fmt::format("{} {}", target.codecOption, usual)));
}

void checkForbidden(int noTranscode, pugi::xml_node element, const char *effect, Report &report)
{
    if (noTranscode == 1)
        report.add(Fault::TargetForbidden, element, element.attribute("NOTRANSCODE"),
                   fmt::format("NOTRANSCODE here {}", effect),
                   "remove it, unless files that don't fit are to be refused");
}

void checkMuxer(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    const auto muxer = optionValue(textOf(entry.option), "-f");
    const auto made = muxer ? containerWrittenBy(*muxer) : std::nullopt;
    if (!made || entry.formatId == kAnyContainer) return;
    const bool subtypeIsSet = optionValue(textOf(entry.option), "-brand").has_value();
    const bool needsSubtype = subtypePart(entry.formatId) != 0 && !subtypeIsSet;
    if (*made == containerPart(entry.formatId) &&
        (!needsSubtype || writesSubtype(*muxer, entry.formatId)))
        return;
    const std::string usual = usualOption(place);
    report.add(
        Fault::OptionContainer, element, element.attribute("OPTION"),
        fmt::format("-f {} does not make {}", excerpt(*muxer), containerText(entry.formatId)),
        usual.empty() ? "remove it, since ffmpeg makes no such file" : "write " + usual);
}

/// Whether what is transcoded to can be put into the container for it.
void checkHeldCodecs(const Place &place, std::string_view muxer, Report &report)
{
    const int picture = place.video.record ? place.video.record->vCodecId : kAnyCodec;
    for (const int codec : {picture, place.audio.record->aCodecId})
        if (codec != kAnyCodec && refusesCodec(muxer, codec))
            report.add(Fault::MuxerCodec, place.entry.element,
                       place.entry.element.attribute("OPTION"),
                       fmt::format("-f {}: {} puts no {} into it", excerpt(muxer), askedFormats(),
                                   codecText(codec)),
                       fmt::format("put a container first that holds {}", codecText(codec)));
}

/// The container that everything goes into which isn't sent as it is.
void checkFirstContainer(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    const bool isTarget = place.audio.position == 0;
    if (isTarget && entry.nonSeekable == 1) // alone it only prevents remuxing
        checkForbidden(entry.noTranscode, element,
                       "with NONSEEKABLE refuses every file whose sound needs transcoding", report);
    // kept sound beside a transcoded picture comes into its own first container
    const bool takesPicture = place.video.record && place.video.position == 0;
    if (entry.formatId == kAnyContainer && (isTarget || takesPicture))
        report.add(Fault::TargetWildcard, element, element.attribute("NAME"),
                   "the first container says what is made, and a wildcard says nothing",
                   "put a container before it");
    if (entry.formatId == kAnyContainer || entry.noTranscode == 1) return;
    const auto muxer = optionValue(textOf(entry.option), "-f");
    if (muxer && isTarget && place.video.position == 0) checkHeldCodecs(place, *muxer, report);
    if (!muxer)
        report.add(Fault::ContainerWithoutOption, element, element.attribute("OPTION"),
                   "what is put into the first container needs an OPTION with -f",
                   optionAdvice(usualOption(place)));
}

} // namespace

void checkVideoTarget(const Place &place, Report &report)
{
    const VideoRule &rule = *place.video.record;
    const pugi::xml_node element = place.video.element;
    checkTarget({element, rule.vCodecId, place.video.position, textOf(rule.option),
                 s_VideoCodecOptions, kVideoOption},
                report);
    if (place.video.position != 0) return;
    checkForbidden(rule.noTranscode, element, "refuses every file that needs transcoding", report);
}

void checkAudioTarget(const Place &place, Report &report)
{
    const AudioRule &rule = *place.audio.record;
    const pugi::xml_node element = place.audio.element;
    checkTarget({element, rule.aCodecId, place.audio.position, textOf(rule.option),
                 s_AudioCodecOptions, kAudioOption},
                report);
    if (rule.noTranscode != 0)
        reportNoEffect(element, "NOTRANSCODE", "no decision looks at it",
                       "write it at the VCODEC, or at the first FORMAT", report);
}

void checkContainerTarget(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    checkMuxer(place, report);
    if (entry.formatId == kAnyContainer && entry.option)
        reportNoEffect(element, "OPTION", "the usual one of the source's container is taken",
                       "remove it", report);
    if (place.entry.position == 0)
        checkFirstContainer(place, report);
    else if (entry.noTranscode != 0)
        reportNoEffect(element, "NOTRANSCODE", "that of the first FORMAT alone counts",
                       "write it at the first FORMAT, or remove it", report);
}

} // namespace vornak::tool

// Whether what is announced of an output is known, and fits it.
#include "tools/check/checks.h"

#include "base/media_ids.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "tools/check/option_words.h"
#include "tools/profile/dlna_names.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>

namespace vornak::tool {
namespace {

/// The codec of the picture in a container, or -1 for music.
int pictureOf(const Place &place)
{
    return place.video.record ? place.video.record->vCodecId : -1;
}

void checkMime(const Place &place, Report &report)
{
    const pugi::xml_node element = place.entry.element;
    const char *mime = place.entry.record->mime;
    const bool isMusic = !place.video.record;
    const std::string usual = mimeOf(place.entry.record->formatId, isMusic);
    if (!mime)
        return report.add(Fault::MimeMissing, element,
                          fmt::format("{} is announced without a MIME type",
                                      excerpt(element.attribute("NAME").value())),
                          fmt::format("add MIME=\"{}\"", usual));
    const pugi::xml_attribute attribute = element.attribute("MIME");
    if (!isKnownMimeType(mime))
        return report.add(Fault::UnknownMime, element, attribute,
                          fmt::format("{} is no MIME type of media known here", shown(attribute)),
                          report.suggest(bareMimeType(mime), mimeTypes(),
                                         "write the one that the player states"));
    const std::string why = mimeContradiction(mime, place.entry.record->formatId, isMusic);
    if (!why.empty())
        report.add(Fault::ForeignMime, element, attribute,
                   fmt::format("{} {}", shown(attribute), why),
                   fmt::format("write MIME=\"{}\", or what else the player states", usual));
}

/// The profile of H.264 or the like that OPTION asks for, as a bit, where this place announces what
/// it makes; else 0.
int profileMade(const Place &place)
{
    if (!place.video.record || place.video.position + place.audio.position + place.entry.position)
        return 0;
    const auto value = optionValue(textOf(place.video.record->option), s_PictureProfileOptions);
    int bit = 0;
    if (value && codecHasProfile(place.video.record->vCodecId, std::string(*value).c_str()))
        ProfileNameToID(std::string(*value).c_str(), &bit);
    return bit;
}

DlnaUse useOf(const Place &place)
{
    DlnaUse use{place.entry.record->formatId, pictureOf(place), place.audio.record->aCodecId};
    use.channels = place.audio.record->maxChannels;
    if (place.audio.position != 0)
        use.soundProfiles = place.audio.record->aProfileId & allProfilesOf(use.sound);
    if (const VideoRule *rule = place.video.record) {
        const int made = profileMade(place);
        use.profiles = made != 0 ? made : rule->vProfileId;
        use.width = rule->maxWidth;
        use.height = rule->maxHeight;
    }
    return use;
}

/// What a name says of the picture beyond its codec that isn't so here; empty: it fits.
std::string pictureContradiction(const DlnaName &name, const DlnaUse &use, int codec)
{
    if (name.profiles != 0 && use.profiles > 0 && (name.profiles & use.profiles) == 0)
        return fmt::format("means the profile {} and not {}",
                           fmt::join(profileTexts(name.bestProfile, codec), ""),
                           fmt::join(profileTexts(use.profiles, codec), ", "));
    if (name.width != 0 && use.width > name.width && use.height > name.height)
        return fmt::format("means pictures of up to {}x{}, and not of {}x{}", name.width,
                           name.height, use.width, use.height);
    return {};
}

/// What a name says that isn't so here; empty: it fits.
std::string contradiction(const DlnaName &name, const Place &place)
{
    const int picture = pictureOf(place), sound = place.audio.record->aCodecId;
    const int container = containerPart(place.entry.record->formatId);
    if (name.pictures.empty() != (picture < 0))
        return name.pictures.empty() ? "is a name for music" : "is a name for videos";
    if (picture > 0 && !allows(name.pictures, picture))
        return fmt::format("means {} and not {}", codecText(name.pictures.front()),
                           codecText(picture));
    if (sound > 0 && !allows(name.sounds, sound))
        return fmt::format("means {} and not {}", codecText(name.sounds.front()), codecText(sound));
    if (!allows(name.containers, container))
        return fmt::format("means {} and not {}", containerText(name.containers.front()),
                           containerText(container));
    const DlnaUse use = useOf(place);
    if (name.soundProfiles != 0 && use.soundProfiles > 0 &&
        (name.soundProfiles & use.soundProfiles) == 0)
        return fmt::format("means AAC in the profile {}",
                           fmt::join(profileTexts(name.soundProfiles, sound), ", "));
    return pictureContradiction(name, use, picture);
}

void checkPn(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    const std::string &fitting = dlnaNameFor(useOf(place));
    const bool isFamily = fitting.ends_with('*');
    if (!entry.pn) {
        if (!fitting.empty())
            report.add(
                Fault::PnMissing, element,
                fmt::format("{} is announced without a DLNA profile name, and there are such",
                            excerpt(element.attribute("NAME").value())),
                isFamily ? fmt::format("add PN, the one of {} that the player states", fitting)
                         : fmt::format("add PN, such as {}", fitting));
        return;
    }
    const pugi::xml_attribute pn = element.attribute("PN");
    static const std::vector<std::string> s_known = dlnaNames();
    const DlnaName *name = findDlnaName(entry.pn);
    if (!name)
        return report.add(
            Fault::UnknownPn, element, pn,
            fmt::format("{} is no DLNA profile name known here", shown(pn)),
            report.suggest(entry.pn, s_known, "write one that the player states, or none"));
    const std::string why = contradiction(*name, place);
    if (!why.empty())
        report.add(Fault::ForeignPn, element, pn, fmt::format("{} {}", shown(pn), why),
                   fitting.empty() ? "remove it"
                   : isFamily      ? fmt::format("write one of {}, or remove it", fitting)
                                   : fmt::format("write a name such as {}", fitting));
}

} // namespace

void checkAnnouncement(const Place &place, Report &report)
{
    if (place.entry.record->formatId == kAnyContainer) return;
    checkMime(place, report);
    checkPn(place, report);
}

} // namespace vornak::tool

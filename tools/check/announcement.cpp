// Whether what is announced of an output is known, and fits it.
#include "tools/check/checks.h"

#include "base/media_ids.h"
#include "tools/profile/dlna_names.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <cctype>
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
    if (!mime)
        return report.add(Fault::MimeMissing, element,
                          fmt::format("{} is announced without a MIME type",
                                      excerpt(element.attribute("NAME").value())),
                          "add MIME");
    static const std::vector<std::string> s_known = mimeTypes();
    std::string type(mime);
    type.erase(std::min(type.find_first_of("; "), type.size())); // its parameters
    std::ranges::transform(type, type.begin(), [](unsigned char c) { return std::tolower(c); });
    if (std::ranges::find(s_known, type) != s_known.end()) return;
    report.add(
        Fault::UnknownMime, element, element.attribute("MIME"),
        fmt::format("{} is no MIME type of media known here", shown(element.attribute("MIME"))),
        report.suggest(type, s_known, "write the one that the player states"));
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
    return {};
}

void checkPn(const Place &place, Report &report)
{
    const ContainerEntry &entry = *place.entry.record;
    const pugi::xml_node element = place.entry.element;
    const DlnaName *fitting =
        dlnaNameFor(entry.formatId, pictureOf(place), place.audio.record->aCodecId);
    if (!entry.pn) {
        if (fitting)
            report.add(
                Fault::PnMissing, element,
                fmt::format("{} is announced without a DLNA profile name, and there are such",
                            excerpt(element.attribute("NAME").value())),
                fmt::format("add PN, such as {}", fitting->name));
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
                   fitting ? fmt::format("write a name such as {}", fitting->name) : "remove it");
}

} // namespace

void checkAnnouncement(const Place &place, Report &report)
{
    if (place.entry.record->formatId == kAnyContainer) return;
    checkMime(place, report);
    checkPn(place, report);
}

} // namespace vornak::tool

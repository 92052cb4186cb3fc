// What stands in a profile that the loader passes over.
#include "tools/check/checks.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fmt/format.h>
#include <string_view>
#include <unordered_set>

namespace vornak::tool {
namespace {

constexpr std::size_t kLongestName = 64; // of attributes that are like a known one

std::string upperCase(std::string_view text)
{
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return std::toupper(c); });
    return upper;
}

/// The name that is known but for the case of its letters.
std::vector<std::string>::const_iterator sameButForCase(std::string_view name,
                                                        const std::vector<std::string> &known)
{
    return std::ranges::find_if(known, [&](const std::string &each) {
        return std::ranges::equal(name, each, [](unsigned char a, unsigned char b) {
            return std::toupper(a) == std::toupper(b);
        });
    });
}

/// The element that people write so, where it may stand among `known`; empty: none.
std::string_view elementMeant(std::string_view name, const std::vector<std::string> &known)
{
    constexpr struct {
        std::string_view written, meant;
    } s_Synonyms[] = {
        {"AUDIO", "ACODEC"},      {"AUDIO", "MUSIC"},  {"AUDIOCODEC", "ACODEC"},
        {"VIDEOCODEC", "VCODEC"}, {"CODEC", "VCODEC"}, {"CODEC", "ACODEC"},
        {"CONTAINER", "FORMAT"},  {"MUXER", "FORMAT"}, {"VIDEOS", "VIDEO"},
        {"MOVIE", "VIDEO"},
    };
    const std::string upper = upperCase(name.substr(0, kLongestName));
    for (const auto &row : s_Synonyms)
        if (row.written == upper && std::ranges::find(known, row.meant) != known.end())
            return row.meant;
    return {};
}

void reportUnknownChild(const ElementPlace &place, pugi::xml_node child, Report &report)
{
    const std::vector<std::string> known = childNames(place.row.element);
    const std::string_view meant = elementMeant(child.name(), known);
    report.add(Fault::UnknownElement, child,
               fmt::format("unknown element {} in {}: it is ignored, with all that it holds",
                           excerpt(child.name()), place.row.name),
               meant.empty() ? report.suggest(child.name(), known, "remove it")
                             : fmt::format("did you mean {}?", meant));
    const auto sameName = sameButForCase(child.name(), known);
    if (sameName != known.end()) report.mendElementName(child, *sameName);
}

void checkChildElement(const ElementPlace &place, pugi::xml_node child, Report &report)
{
    const ElementRow *row = findElement(child.name());
    if (!row) return reportUnknownChild(place, child, report);
    if ((row->parents & place.row.element) == 0)
        return report.add(Fault::MisplacedElement, child,
                          fmt::format("{} in {} is ignored", row->name, place.row.name),
                          row->parents == kDocument
                              ? "a file holds one DEVICE"
                              : fmt::format("put it into {}", elementNames(row->parents)));
    const bool isSection = (row->element & (kMusic | kVideo)) != 0;
    if (isSection && child.previous_sibling(row->name))
        report.add(Fault::RepeatedSection, child,
                   fmt::format("a second {} section is ignored", row->name),
                   "move its rules into the first one");
}

bool isText(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

void reportText(pugi::xml_node text, const char *where, pugi::xml_node element, Report &report)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    std::string_view words = text.value();
    const std::size_t blanks = words.find_first_not_of(kBlanks);
    if (blanks == std::string_view::npos) return;
    words.remove_prefix(blanks);
    words = words.substr(0, words.find_last_not_of(kBlanks) + 1);
    report.add(
        Fault::StrayText, report.document().offsetOf(text) + blanks, element,
        fmt::format("the text \"{}\" {} {} is ignored", excerpt(words), where, element.name()),
        "values belong into attributes");
}

/// Whether text that begins with '&' begins with a reference that XML knows by itself.
bool isReference(std::string_view text)
{
    constexpr std::string_view s_Named[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
    if (std::ranges::any_of(s_Named, [&](auto named) { return text.starts_with(named); }))
        return true;
    const bool isHex = text.starts_with("&#x");
    const std::size_t digits = isHex ? 3 : 2;
    const std::size_t end = text.find_first_not_of(isHex ? "0123456789abcdefABCDEF" : "0123456789",
                                                   std::min(digits, text.size()));
    return text.starts_with("&#") && end != std::string_view::npos && end > digits &&
           text[end] == ';';
}

void checkAmpersands(const ElementPlace &place, pugi::xml_attribute attribute, Report &report)
{
    if (!std::strchr(attribute.value(), '&')) return; // none was written, or all were read
    const std::string_view written = report.writtenValue(place.element, attribute);
    for (std::size_t at = written.find('&'); at != std::string_view::npos;
         at = written.find('&', at + 1))
        if (!isReference(written.substr(at))) {
            report.add(Fault::BareAmpersand, place.element, attribute,
                       fmt::format("{} holds a bare \"&\", for which other readers of XML refuse "
                                   "the file",
                                   shown(attribute)),
                       "write &amp; in its place");
            const std::size_t value = report.written(place.element, attribute).value;
            return report.mend({value + at + 1, 0, "amp;"});
        }
}

/// The known name that is the same but for MAX or MIN before it, or one that people write for it;
/// empty: there is none.
std::string nameWithSameStem(std::string_view name, const std::vector<std::string> &known)
{
    constexpr struct {
        std::string_view written, meant;
    } s_Synonyms[] = {
        {"SAMPLERATE", "FREQUENCY"}, {"RATE", "FREQUENCY"},  {"SAMPLINGRATE", "FREQUENCY"},
        {"BANDWIDTH", "BITRATE"},    {"MIMETYPE", "MIME"},   {"CONTAINER", "NAME"},
        {"CODEC", "NAME"},           {"VIDEOCODEC", "NAME"}, {"AUDIOCODEC", "NAME"},
        {"FORMAT", "NAME"},          {"TYPE", "SUBTYPE"},    {"DLNAPROFILE", "PN"},
    };
    const auto stemOf = [](std::string_view text) {
        const bool isBound = text.starts_with("MAX") || text.starts_with("MIN");
        text.remove_prefix(isBound ? 3 : 0);
        while (text.starts_with('_') || text.starts_with('-')) text.remove_prefix(1);
        return text;
    };
    const std::string upper = upperCase(name.substr(0, kLongestName));
    std::string_view stem = stemOf(upper);
    for (const auto &row : s_Synonyms)
        if (row.written == stem) stem = row.meant;
    const bool isMin = upper.starts_with("MIN");
    std::string found;
    for (const std::string &each : known)
        if (stemOf(each) == stem && (found.empty() || (isMin && each.starts_with("MIN"))))
            found = each;
    return found;
}

/// An attribute that is known but for the case of its letters gets its name.
void mendLetterCase(pugi::xml_node element, pugi::xml_attribute attribute,
                    const std::vector<std::string> &known, Report &report)
{
    const std::string_view name = attribute.name();
    const auto meant = sameButForCase(name, known);
    if (meant != known.end() && !element.attribute(meant->c_str()))
        report.mend({report.written(element, attribute).name, name.size(), *meant});
}

/// Both sizes of a picture in one attribute. False: it is none of such.
bool reportSizes(const ElementPlace &place, pugi::xml_attribute attribute,
                 const std::string &problem, Report &report)
{
    constexpr std::string_view s_Names[] = {"RESOLUTION",    "SIZE",    "PICTURESIZE",
                                            "MAXRESOLUTION", "MAXSIZE", "MAX_RESOLUTION"};
    const std::string name = upperCase(std::string_view(attribute.name()).substr(0, kLongestName));
    if (place.row.element != kVcodec || std::ranges::find(s_Names, name) == std::end(s_Names))
        return false;
    const std::string pair = sizePair(attribute.value(), "MAX");
    report.add(Fault::UnknownAttribute, place.element, attribute, problem,
               "write " + (pair.empty() ? "MAXWIDTH and MAXHEIGHT" : pair));
    if (!pair.empty() && !place.element.attribute("MAXWIDTH") &&
        !place.element.attribute("MAXHEIGHT"))
        report.mendWhole(place.element, attribute, pair);
    return true;
}

void checkAttribute(const ElementPlace &place, pugi::xml_attribute attribute, Report &report)
{
    const AttributeRow *row = findAttribute(attribute.name());
    if (row && (row->elements & place.row.element) != 0) return;
    const std::vector<std::string> own = attributeNames(place.row.element);
    const std::string problem = fmt::format("unknown attribute {} of {} is ignored",
                                            excerpt(attribute.name()), place.row.name);
    if (reportSizes(place, attribute, problem, report)) return;
    const std::string alike = nameWithSameStem(attribute.name(), own);
    report.add(Fault::UnknownAttribute, place.element, attribute, problem,
               row              ? fmt::format("it belongs to {}", elementNames(row->elements))
               : !alike.empty() ? fmt::format("did you mean {}?", alike)
                                : report.suggest(attribute.name(), own, "remove it"));
    mendLetterCase(place.element, attribute, own, report);
}

/// A kind of files for which there is no section.
void checkKinds(const ElementPlace &place, Report &report)
{
    if (place.row.element != kDevice) return;
    const bool hasMusic = !!place.element.child("MUSIC"), hasVideo = !!place.element.child("VIDEO");
    if (hasMusic == hasVideo) return;
    report.add(Fault::KindUnserved, place.element,
               fmt::format("DEVICE has no {}, so no rule serves {}", hasMusic ? "VIDEO" : "MUSIC",
                           hasMusic ? "videos" : "music files"),
               "add it, unless the player takes none");
}

} // namespace

void checkBeside(pugi::xml_node device, Report &report)
{
    for (const pugi::xml_node node : device.parent().children()) {
        if (isText(node)) reportText(node, "beside", device, report);
        if (node.type() != pugi::node_element || node == device) continue;
        const ElementRow *row = findElement(node.name());
        const Fault fault = !row                      ? Fault::UnknownElement
                            : row->element == kDevice ? Fault::RepeatedSection
                                                      : Fault::MisplacedElement;
        report.add(fault, node,
                   fmt::format("{} beside the first DEVICE is ignored", excerpt(node.name())),
                   "a file holds one DEVICE, and all else in it");
    }
}

void checkChildren(const ElementPlace &place, Report &report)
{
    for (const pugi::xml_node child : place.element.children()) {
        if (child.type() == pugi::node_element) checkChildElement(place, child, report);
        if (isText(child)) reportText(child, "in", place.element, report);
    }
}

void checkAttributes(const ElementPlace &place, Report &report)
{
    std::unordered_set<std::string_view> seen;
    for (const pugi::xml_attribute attribute : place.element.attributes()) {
        checkAmpersands(place, attribute, report);
        if (!seen.insert(attribute.name()).second) {
            report.add(Fault::DuplicateAttribute, place.element, attribute,
                       fmt::format("{} is ignored: only the first {} counts", shown(attribute),
                                   excerpt(attribute.name())),
                       "remove one of them");
            if (std::strcmp(attribute.value(), place.element.attribute(attribute.name()).value()) ==
                0)
                report.mendByRemoval(place.element, attribute);
        } else
            checkAttribute(place, attribute, report);
    }
}

void checkNeeded(const ElementPlace &place, Report &report)
{
    constexpr struct {
        unsigned element;
        Fault fault;
        const char *problem;
        const char *advice;
    } s_Needs[] = {
        {kDevice, Fault::DeviceWithoutSections,
         "DEVICE holds neither MUSIC nor VIDEO: it serves nothing", "add a section with rules"},
        {kMusic, Fault::SectionWithoutRules, "MUSIC holds no rule",
         "add an ACODEC, or remove the section"},
        {kVideo, Fault::SectionWithoutRules, "VIDEO holds no rule",
         "add a VCODEC, or remove the section"},
        {kVcodec, Fault::VideoWithoutAudio, "VCODEC without an ACODEC is left out",
         "add the sound that may come with this picture"},
        {kAcodec, Fault::CodecWithoutContainers, "ACODEC without a FORMAT is left out",
         "add the containers that the player takes it from"},
    };
    const auto isThere = [&](const std::string &name) { return place.element.child(name.c_str()); };
    for (const auto &need : s_Needs)
        if (place.row.element == need.element &&
            std::ranges::none_of(childNames(need.element), isThere))
            report.add(need.fault, place.element, need.problem, need.advice);
    checkKinds(place, report);
}

} // namespace vornak::tool

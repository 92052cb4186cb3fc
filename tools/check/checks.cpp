#include "tools/check/checks.h"

#include "tools/profile/profile_document.h"
#include "tools/profile/profile_session.h"

#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr ElementCheck s_ElementChecks[] = {checkChildren, checkAttributes, checkNeeded,
                                            checkName,     checkNameLists,  checkNumbers,
                                            checkLimits,   checkBitRates,   checkOption};
constexpr RuleCheck s_VideoChecks[] = {checkVideoTarget, checkPixels};
constexpr RuleCheck s_AudioChecks[] = {checkFrequencies, checkAudioTarget, checkPcm};
constexpr RuleCheck s_ContainerChecks[] = {checkContainerTarget, checkAnnouncement};

/// Runs the checks over an element and those that the loader looks at in it.
void checkElements(pugi::xml_node element, Report &report)
{
    const ElementRow &row = *findElement(element.name());
    for (const ElementCheck check : s_ElementChecks) check({element, row}, report);
    for (const pugi::xml_node child : element.children()) {
        const ElementRow *childRow = findElement(child.name());
        if (!childRow || (childRow->parents & row.element) == 0) continue;
        const bool isIgnoredSection =
            row.element == kDevice && child.previous_sibling(child.name());
        if (!isIgnoredSection) checkElements(child, report);
    }
}

template <class Record>
std::vector<RulePlace<Record>> places(const Record *table,
                                      const std::vector<pugi::xml_node> &elements)
{
    std::vector<RulePlace<Record>> all;
    for (const pugi::xml_node element : elements) {
        if (!table || idOf(*table) == kEndOfTable) break;
        all.push_back({table++, element, static_cast<int>(all.size())});
    }
    return all;
}

/// For an element of which the loader makes an empty table.
void reportNoneValid(pugi::xml_node parent, Report &report)
{
    const ElementRow &row = *findElement(parent.name());
    const Fault fault = row.element == kAcodec   ? Fault::CodecWithoutContainers
                        : row.element == kVcodec ? Fault::VideoWithoutAudio
                                                 : Fault::SectionWithoutRules;
    report.add(
        fault, parent,
        fmt::format("none of the elements in this {} is valid, so it serves nothing", row.name),
        "see what is said of them");
}

void checkContainerRules(Place place, Report &report)
{
    const auto entries = places<ContainerEntry>(place.audio.record->pFormatTable,
                                                containerEntries(place.audio.element));
    if (entries.empty()) reportNoneValid(place.audio.element, report);
    checkContainerReach(entries, report);
    for (const auto &entry : entries) {
        place.entry = entry;
        for (const RuleCheck check : s_ContainerChecks) check(place, report);
    }
}

void checkAudioRules(Place place, const AudioRule *table, pugi::xml_node parent, Report &report)
{
    const auto rules = places(table, audioRules(parent));
    if (table && rules.empty()) reportNoneValid(parent, report);
    checkAudioReach(rules, report);
    checkAudioOutput(rules, report);
    for (const auto &rule : rules) {
        place.audio = rule;
        for (const RuleCheck check : s_AudioChecks) check(place, report);
        checkContainerRules(place, report);
    }
}

void checkVideoRules(const VideoRule *table, pugi::xml_node video, Report &report)
{
    const auto rules = places(table, videoRules(video));
    if (table && rules.empty()) reportNoneValid(video, report);
    checkVideoReach(rules, report);
    checkVideoOutput(rules, report);
    for (const auto &rule : rules) {
        const Place place{rule, {}, {}};
        for (const RuleCheck check : s_VideoChecks) check(place, report);
        checkAudioRules(place, rule.record->pAudioTable, rule.element, report);
    }
}

} // namespace

std::vector<Finding> checkProfile(const std::string &path, std::string &text)
{
    const ProfileDocument document(path);
    const ProfileSession session(path);
    const TRANSCODE_DEVICE_PROFILE_ST &profile = session.profile();
    Report report(document);
    checkEncoding(document.device(), report);
    checkBeside(document.device(), report);
    checkElements(document.device(), report);
    checkAudioRules({}, profile.pAudioTable, document.device().child("MUSIC"), report);
    checkVideoRules(profile.pVideoTable, document.device().child("VIDEO"), report);
    report.dropConsequences();
    applySilencers(document.device(), report);
    if (document.isConverted())
        // the file has other bytes than the text
        for (Finding &finding : report.findings()) finding.edits.clear();
    text = document.text();
    return std::move(report).sorted();
}

} // namespace vornak::tool

#include "tools/decide/explanation.h"

#include "decision/container_agreement.h"

#include <algorithm>

namespace vornak::tool {
namespace {

template <class Record>
RuleRef refTo(const Record *record, int index)
{
    if (!record) return {};
    return {record, positionOf(index), idOf(*record)};
}

RuleRef refTo(const Visit &visit)
{
    return {visit.record, visit.position, visit.id};
}

/// Why a rule keeps the stream.
ReasonCode keepCode(Verdict verdict)
{
    if (verdict == Verdict::Unmatched) return ReasonCode::NotMatched;
    return verdict == Verdict::TakesAny ? ReasonCode::AnyCodec : ReasonCode::Taken;
}

/// Why no rule takes the stream: the comparisons of the nearest miss, or that there is none.
void addMiss(const std::vector<Visit> &visits, std::vector<Reason> &reasons)
{
    const Visit *miss = nearestMiss(visits);
    if (!miss) {
        reasons.push_back({.code = ReasonCode::NoRule});
        return;
    }
    for (const Refusal &refusal : miss->refusals)
        reasons.push_back({.code = ReasonCode::Compared, .rule = refTo(*miss), .refusal = refusal});
}

Part explainVideo(const Decision &decision, const DecisionRequest &request,
                  const std::vector<Visit> &visits)
{
    Part part{decision.transcodesVideo() ? Action::Transcode : Action::Keep,
              refTo(decision.videoRule, decision.videoIndex),
              {}};
    const Visit *taking = takingVisit(visits);
    if (part.action == Action::Transcode) {
        if (request.force) part.reasons.push_back({.code = ReasonCode::Forced});
        if (request.audioTrack > 0) part.reasons.push_back({.code = ReasonCode::AudioTrack});
        if (!taking) addMiss(visits, part.reasons);
    } else if (taking) {
        part.reasons.push_back({.code = keepCode(taking->verdict), .rule = refTo(*taking)});
    }
    if (taking && taking->coveredExceptions != 0)
        part.reasons.push_back({.code = ReasonCode::ExceptionsPartlyCovered,
                                .rule = refTo(*taking),
                                .exceptions = taking->coveredExceptions});
    return part;
}

Part explainAudio(const Decision &decision, const DecisionRequest &request,
                  const std::vector<Visit> &visits)
{
    Part part{Action::None, refTo(decision.audioRule, decision.audioIndex), {}};
    const Visit *taking = takingVisit(visits);
    if (decision.isSilent) {
        part.reasons.push_back({.code = ReasonCode::NoAudio});
    } else if (!decision.transcodesAudio()) {
        part.action = Action::Keep;
        if (taking)
            part.reasons.push_back({.code = keepCode(taking->verdict), .rule = refTo(*taking)});
    } else {
        part.action = Action::Transcode;
        if (request.force)
            part.reasons.push_back({.code = ReasonCode::Forced});
        else if (taking)
            part.reasons.push_back({.code = decision.transcodesVideo()
                                                ? ReasonCode::FirstContainerForbidden
                                                : ReasonCode::ContainerForbidden,
                                    .rule = refTo(*taking)});
        if (!taking) addMiss(visits, part.reasons);
    }
    return part;
}

/// The entry that the caller's wish chooses, or none.
RuleRef preferredEntry(const AudioRule *rule, int preferFormatId)
{
    if (!rule || preferFormatId <= 0) return {};
    const auto entries = recordsOf<ContainerEntry>(rule->pFormatTable);
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const ContainerEntry &entry) {
            return agrees(entry.formatId, preferFormatId);
        });
    if (found == entries.end()) return {};
    return refTo(&*found, static_cast<int>(found - entries.begin()));
}

/// Why this entry describes the output's container.
Reason containerReason(const Decision &decision, const DecisionRequest &request)
{
    const bool streamsChange =
        isTranscoded(decision.videoIndex) || isTranscoded(decision.audioIndex);
    const RuleRef preferred = preferredEntry(decision.audioRule, request.preferFormatId);
    const RuleRef first = refTo(decision.entry, VORNAK_TRANSCODE);
    if (request.force) return {.code = ReasonCode::Forced};
    if (isTranscoded(decision.formatIndex)) {
        if (!streamsChange)
            return {.code = ReasonCode::NoEntry,
                    .rule = refTo(decision.audioRule, decision.audioIndex)};
        return {.code = ReasonCode::NotSeekable, .rule = preferred.record ? preferred : first};
    }
    const RuleRef chosen = refTo(decision.entry, decision.formatIndex);
    if (preferred.record) return {.code = ReasonCode::Preferred, .rule = chosen};
    if (streamsChange) return {.code = ReasonCode::OutputOfRule, .rule = chosen};
    return {.code = containerPart(chosen.id) == kAnyContainer ? ReasonCode::AnyContainer
                                                              : ReasonCode::EntryTaken,
            .rule = chosen};
}

Part explainContainer(const Decision &decision, const DecisionRequest &request)
{
    Part part{decision.containerChanges ? Action::Transcode : Action::Keep,
              refTo(decision.entry, decision.formatIndex),
              {}};
    part.reasons.push_back(containerReason(decision, request));
    if (request.preferFormatId > 0 &&
        !preferredEntry(decision.audioRule, request.preferFormatId).record)
        part.reasons.push_back({.code = ReasonCode::PreferredNotListed,
                                .rule = refTo(decision.audioRule, decision.audioIndex)});
    return part;
}

void explainRefusal(const Decision &decision, Explanation &explanation)
{
    if (!decision.isRefused()) return;
    if (decision.videoRule && decision.videoRule->noTranscode == 1) {
        explanation.forbidding.push_back(refTo(decision.videoRule, decision.videoIndex));
        explanation.forbidsVideoRule = true;
    }
    if (isTranscoded(decision.formatIndex) && decision.entry && decision.entry->noTranscode == 1)
        explanation.forbidding.push_back(refTo(decision.entry, decision.formatIndex));
}

/// A bit rate that the file doesn't state is marked wherever it is compared.
void markEstimates(std::vector<Visit> &visits, bool estimated)
{
    for (Visit &visit : visits)
        for (Refusal &refusal : visit.refusals)
            refusal.estimated = estimated && refusal.unit == Unit::BitRate;
}

/// Entries are searched as long as no stream is transcoded, in the rule that takes the audio.
void visitEntries(const Decision &decision, Explanation &explanation)
{
    const Visit *taking = takingVisit(explanation.audioVisits);
    if (isTranscoded(decision.videoIndex) || !taking) return;
    const auto *rule = static_cast<const AudioRule *>(taking->record);
    explanation.entryVisits = walkEntries(rule->pFormatTable, decision.formatId);
    explanation.searchedRule = refTo(*taking);
}

} // namespace

std::string_view nameOf(Action action)
{
    constexpr std::string_view s_Names[] = {"none", "keep", "transcode"};
    return s_Names[static_cast<std::size_t>(action)];
}

Explanation explain(const Decision &decision, const DecisionRequest &request)
{
    Explanation explanation;
    if (decision.isVideo) {
        explanation.videoVisits =
            walkVideoRules(decision.videoTable, decision.video, request.matchVideo);
        markEstimates(explanation.videoVisits, decision.media.video->bitrateEstimated);
        explanation.video = explainVideo(decision, request, explanation.videoVisits);
    }
    explanation.audioVisits = walkAudioRules(decision.audioTable, decision.audio);
    if (const AudioTrack *track = decision.audioTrack())
        markEstimates(explanation.audioVisits, track->bitrateEstimated);
    explanation.audio = explainAudio(decision, request, explanation.audioVisits);
    explanation.container = explainContainer(decision, request);
    if (!request.force) visitEntries(decision, explanation);
    if (decision.isSilent) explanation.audioVisits.clear(); // of audio that isn't there
    explainRefusal(decision, explanation);
    return explanation;
}

} // namespace vornak::tool

#include "tools/decide/decision_json.h"

#include "tools/decide/reason_text.h"
#include "tools/decide/surroundings.h"
#include "tools/probe/media_json.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/printable.h"

namespace vornak::tool {
namespace {

Json rule(const RuleRef &ref, const std::string &name, const ProfileSession &session)
{
    const int line = session.lineOf(ref.record);
    return object(
        {{"position", ref.position}, {"name", name}, {"line", line > 0 ? Json(line) : Json()}});
}

Json rule(const RuleRef &ref, RuleKind kind, const ProfileSession &session)
{
    if (!ref.record) return nullptr;
    return rule(ref, kind == RuleKind::Codec ? codecText(ref.id) : containerText(ref.id), session);
}

Json compared(const Refusal &refusal, int value, int secondValue)
{
    switch (refusal.unit) {
    case Unit::ProfileBits:
        return profileTexts(value, refusal.codecId);
    case Unit::ExceptionBits:
        return playExceptionTexts(value);
    case Unit::Pixels:
        return {{"width", value}, {"height", secondValue}};
    default:
        return value;
    }
}

std::string_view nameOf(Bound bound)
{
    switch (bound) {
    case Bound::NotWithin:
        return "not-within";
    case Bound::Within:
        return "within";
    case Bound::AtMost:
        return "at-most";
    case Bound::AtLeast:
        return "at-least";
    default:
        return {};
    }
}

void addRefusal(const Refusal &refusal, Json &to)
{
    to["fields"] = Json::array({refusal.field});
    if (!refusal.secondField.empty()) to["fields"].push_back(refusal.secondField);
    to["bound"] = refusal.tolerance > 0 ? "close-to" : nameOf(refusal.bound);
    to["limit"] = compared(refusal, refusal.limit, refusal.secondLimit);
    to["actual"] = compared(refusal, refusal.actual, refusal.secondActual);
    if (refusal.tolerance > 0) to["tolerance"] = refusal.tolerance;
    if (refusal.unit == Unit::BitRate) to["estimated"] = refusal.estimated;
}

Json reasonOf(const Reason &reason, const ProfileSession &session)
{
    Json json{{"code", nameOf(reason)}};
    if (reason.rule.record) json["rule"] = rule(reason.rule, rowOf(reason.code).kind, session);
    if (reason.refusal) addRefusal(*reason.refusal, json);
    if (reason.exceptions != 0) json["covered"] = playExceptionTexts(reason.exceptions);
    return json;
}

Json part(const Part &part, int index, bool isContainer, const ProfileSession &session)
{
    const RuleKind kind = isContainer ? RuleKind::Container : RuleKind::Codec;
    Json reasons = Json::array();
    for (const Reason &reason : part.reasons) reasons.push_back(reasonOf(reason, session));
    return object({{"action", nameOf(part.action)},
                   {"index", index},
                   {"rule", rule(part.rule, kind, session)},
                   {"reasons", std::move(reasons)}});
}

Json source(const Decision &decision)
{
    const MediaInfo &media = decision.media;
    Json tracks = Json::array();
    for (const AudioTrack &track : media.audio) tracks.push_back(jsonOf(track));
    const AudioTrack *track = decision.audioTrack();
    return object({{"container", printable(media.containerName)},
                   {"formatId", media.formatId},
                   {"duration", media.duration},
                   {"video", media.video ? jsonOf(*media.video, decision.video.codecFlag) : Json()},
                   {"audioTracks", std::move(tracks)},
                   {"audioTrack", track ? Json(track->number) : Json()}});
}

Json output(const Decision &decision)
{
    if (decision.isRefused()) return nullptr;
    const bool same = decision.outputFormatId == decision.media.formatId;
    return object({{"container", same ? printable(decision.media.containerName)
                                      : containerText(decision.outputFormatId)},
                   {"formatId", decision.outputFormatId},
                   {"mime", textOrNull(decision.mime)},
                   {"dlnaProfile", textOrNull(decision.dlnaProfile)},
                   {"seekable", decision.isSeekable()}});
}

Json forbidding(const Explanation &explanation, const ProfileSession &session)
{
    Json list = Json::array();
    for (const RuleRef &ref : explanation.forbidding) {
        const bool isVideoRule = explanation.forbidsVideoRule && list.empty();
        list.push_back(
            {{"part", isVideoRule ? "video" : "container"},
             {"rule", rule(ref, isVideoRule ? RuleKind::Codec : RuleKind::Container, session)}});
    }
    return list;
}

Json hardware(const Surroundings &around)
{
    return object({{"allowedByRule", around.ruleAllowsHardware},
                   {"agent", around.hardwareAgent},
                   {"serves", around.hardwareServes()}});
}

Json elements(const Surroundings &around)
{
    return object({{"demuxer", textOrNull(around.demuxer)},
                   {"videoDecoder", textOrNull(around.videoDecoder)},
                   {"audioDecoder", textOrNull(around.audioDecoder)},
                   {"muxer", textOrNull(around.muxer)}});
}

std::string_view nameOf(Verdict verdict)
{
    constexpr std::string_view s_Names[] = {"takes", "takes-any", "not-matched", "refuses",
                                            "other"};
    return s_Names[static_cast<std::size_t>(verdict)];
}

Json visits(const std::vector<Visit> &all, RuleKind kind, const ProfileSession &session)
{
    Json list = Json::array();
    for (const Visit &visit : all) {
        Json json = rule({visit.record, visit.position, visit.id}, kind, session);
        json["verdict"] = nameOf(visit.verdict);
        Json refusals = Json::array();
        for (const Refusal &refusal : visit.refusals) {
            refusals.push_back({{"code", refusal.code}});
            addRefusal(refusal, refusals.back());
        }
        json["refusals"] = std::move(refusals);
        json["nearestMiss"] = visit.isNearestMiss;
        if (visit.coveredExceptions != 0)
            json["partlyCovered"] = playExceptionTexts(visit.coveredExceptions);
        list.push_back(std::move(json));
    }
    return list;
}

Json visits(const Explanation &explanation, const ProfileSession &session)
{
    return {{"video", visits(explanation.videoVisits, RuleKind::Codec, session)},
            {"audio", visits(explanation.audioVisits, RuleKind::Codec, session)},
            {"container", visits(explanation.entryVisits, RuleKind::Container, session)},
            {"containerOf", rule(explanation.searchedRule, RuleKind::Codec, session)}};
}

Json reasons(const ReasonCounts &counts)
{
    Json list = Json::array();
    for (const ReasonCounts::Row &row : counts.rows())
        list.push_back({{"files", row.files},
                        {"outcome", nameOf(row.outcome)},
                        {"part", row.part.empty() ? Json() : Json(row.part)},
                        {"code", row.code},
                        {"text", row.text},
                        {"line", row.line > 0 ? Json(row.line) : Json()}});
    return list;
}

} // namespace

std::string jsonHead(std::string_view document, const std::string &profilePath,
                     const DecisionRequest &request, const ProfileSession &session)
{
    return listHead(document, {{"profile", profileFields(profilePath, session)},
                               {"options", optionFields(request)}});
}

Json profileFields(const std::string &path, const ProfileSession &session)
{
    Json profile = pathFields(path);
    profile["device"] = printable(session.profile().deviceName);
    profile["warnings"] = session.warnings();
    return profile;
}

Json optionFields(const DecisionRequest &request)
{
    return {{"prefer",
             request.preferFormatId > 0 ? Json(containerText(request.preferFormatId)) : Json()},
            {"force", request.force},
            {"audioTrack", request.audioTrack > 0 ? Json(request.audioTrack) : Json()},
            {"matchVideo", request.matchVideo},
            {"playExceptions", playExceptionTexts(request.extraPlayExceptions)}};
}

std::string jsonOf(const std::string &path, const Decision &decision,
                   const Explanation &explanation, const Surroundings &around,
                   const ProfileSession &session, bool withVisits)
{
    Json json = pathFields(path);
    json["outcome"] = nameOf(decision.outcome);
    json["error"] = nullptr;
    json["source"] = source(decision);
    json["result"] = decision.result;
    json["video"] =
        decision.isVideo ? part(explanation.video, decision.videoIndex, false, session) : Json();
    json["audio"] = part(explanation.audio, decision.audioIndex, false, session);
    json["audio"]["otherTracks"] = decision.otherTracks;
    json["container"] = part(explanation.container, decision.formatIndex, true, session);
    json["forbiddenBy"] = forbidding(explanation, session);
    json["output"] = output(decision);
    json["subtitles"] = jsonOf(around.subtitles);
    json["subtitlesError"] = errorOf(around.subtitles);
    json["hardware"] = decision.isVideo ? hardware(around) : Json();
    json["elements"] = elements(around);
    if (withVisits) json["visited"] = visits(explanation, session);
    return compactText(json);
}

std::string jsonOf(const std::string &path, const Undecided &undecided)
{
    Json json = pathFields(path);
    json["outcome"] = nameOf(undecided.outcome);
    json["error"] = {{"code", undecided.code}, {"message", undecided.message}};
    return compactText(json);
}

Json summaryFields(const Totals &totals, bool countReasons)
{
    Json summary{{"files", totals.files}};
    for (int i = 0; i < kOutcomes; ++i) {
        const auto outcome = static_cast<Outcome>(i);
        summary[std::string(nameOf(outcome))] = totals.of(outcome);
    }
    summary["skipped"] = totals.skipped;
    if (countReasons) summary["reasons"] = reasons(totals.reasons);
    return summary;
}

std::string jsonTail(const Totals &totals, bool countReasons)
{
    return "\n],\n\"summary\":" + summaryFields(totals, countReasons).dump() + "}\n";
}

} // namespace vornak::tool

#include "tools/decide/reason_text.h"

#include "tools/profile/id_names.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>

namespace vornak::tool {
namespace {

std::string joined(const std::vector<std::string> &names)
{
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, "|"));
}

/// "0 (aac, line 14)"
std::string positionText(const RuleRef &rule, const std::string &name,
                         const ProfileSession &session)
{
    const int line = session.lineOf(rule.record);
    if (line == 0) return fmt::format("{} ({})", rule.position, name);
    return fmt::format("{} ({}, line {})", rule.position, name, line);
}

/// The source's side of a comparison.
std::string actualText(const Refusal &refusal)
{
    switch (refusal.unit) {
    case Unit::ProfileBits:
        return "profile " + joined(profileTexts(refusal.actual, refusal.codecId));
    case Unit::ExceptionBits:
        return "play exceptions " + joined(playExceptionTexts(refusal.actual));
    case Unit::Level:
        return fmt::format("level {}", refusal.actual);
    case Unit::Channels:
        return channelsText(refusal.actual);
    case Unit::BitRate:
        return bitRateText(refusal.actual, refusal.estimated);
    case Unit::SampleRate:
        return fmt::format("{} Hz", refusal.actual);
    case Unit::Pixels:
        return fmt::format("{}x{} pixels", refusal.actual, refusal.secondActual);
    default:
        return {};
    }
}

std::string_view unitText(Unit unit)
{
    switch (unit) {
    case Unit::ProfileBits:
        return "profile";
    case Unit::ExceptionBits:
        return "play exceptions";
    case Unit::Level:
        return "level";
    case Unit::Channels:
        return "channels";
    case Unit::BitRate:
        return "bit rate";
    case Unit::SampleRate:
        return "sample rate";
    case Unit::Pixels:
        return "picture size";
    default:
        return {};
    }
}

/// The rule's side.
std::string limitText(const Refusal &refusal)
{
    if (refusal.bound == Bound::NotWithin)
        return "excludes " + joined(playExceptionTexts(refusal.limit));
    if (refusal.bound == Bound::Within)
        return "allows " + joined(profileTexts(refusal.limit, refusal.codecId));
    const std::string_view verb = refusal.bound == Bound::AtMost ? "allows" : "needs";
    if (refusal.unit != Unit::Pixels) return fmt::format("{} {}", verb, refusal.limit);
    if (refusal.tolerance > 0)
        return fmt::format("needs {}x{}, give or take {}", refusal.limit, refusal.secondLimit,
                           refusal.tolerance);
    return fmt::format("{} {}x{}", verb, refusal.limit, refusal.secondLimit);
}

/// `one` gives the text of a reason; `again` tells it that the rule was the last one's, too.
template <class One>
std::string allReasons(const Part &part, One one)
{
    std::string text;
    const void *last = nullptr;
    for (const Reason &reason : part.reasons) {
        if (!text.empty()) text += "; ";
        text += one(reason, last == reason.rule.record);
        last = reason.rule.record;
    }
    return text;
}

std::string streamReasons(const Part &part, std::string_view codec, std::string_view where,
                          int exceptions, const ProfileSession &session)
{
    return allReasons(part, [&](const Reason &reason, bool again) {
        const std::string rule = again ? "it" : ruleText(reason.rule, session);
        return fmt::format(
            fmt::runtime(rowOf(reason.code).text), fmt::arg("rule", rule), fmt::arg("codec", codec),
            fmt::arg("where", where),
            fmt::arg("comparison", reason.refusal ? refusalText(*reason.refusal, rule) : ""),
            fmt::arg("covered",
                     partlyCoveredText(again ? "" : rule, reason.exceptions, exceptions)));
    });
}

RuleRef chosenRule(const VideoRule *rule, int index)
{
    return {rule, positionOf(index), rule->vCodecId};
}

void appendPart(std::string &text, std::string_view name, const std::string &reasons)
{
    if (!text.empty()) text += "; ";
    text += fmt::format("{}: {}", name, reasons);
}

} // namespace

std::string_view nameOf(const Reason &reason)
{
    return reason.refusal ? reason.refusal->code : rowOf(reason.code).name;
}

std::string ruleText(const RuleRef &rule, const ProfileSession &session)
{
    return "rule " + positionText(rule, codecText(rule.id), session);
}

std::string entryText(const RuleRef &entry, const ProfileSession &session)
{
    return "entry " + positionText(entry, containerText(entry.id), session);
}

std::string refusalText(const Refusal &refusal, std::string_view who)
{
    return fmt::format("{}, {} {}", actualText(refusal), who, limitText(refusal));
}

std::string refusalOfMany(const Refusal &refusal, std::string_view who)
{
    return fmt::format("{}, {} {}", unitText(refusal.unit), who, limitText(refusal));
}

std::string videoReasons(const Decision &decision, const Part &part, const ProfileSession &session)
{
    return streamReasons(part, printable(decision.media.video->codecName), "",
                         decision.video.codecFlag, session);
}

std::string audioReasons(const Decision &decision, const Part &part, const ProfileSession &session)
{
    const AudioTrack *track = decision.audioTrack();
    std::string where;
    if (const VideoRule *rule = decision.videoRule)
        where = " in video " + ruleText(chosenRule(rule, decision.videoIndex), session);
    return streamReasons(part, track ? printable(track->codecName) : "", where, 0, session);
}

std::string containerReasons(const Decision &decision, const Part &part,
                             const ProfileSession &session)
{
    const RuleRef audio = {decision.audioRule, positionOf(decision.audioIndex),
                           decision.audioRule ? decision.audioRule->aCodecId : 0};
    return allReasons(part, [&](const Reason &reason, bool) {
        return fmt::format(fmt::runtime(rowOf(reason.code).text),
                           fmt::arg("entry", entryText(reason.rule, session)),
                           fmt::arg("audio", ruleText(audio, session)),
                           fmt::arg("container", printable(decision.media.containerName)));
    });
}

std::string partlyCoveredText(const std::string &rule, int covered, int exceptions)
{
    return fmt::format("{} covers {} of {} only, so it does not count",
                       rule.empty() ? "its PLAY_EXCEPTION" : "PLAY_EXCEPTION of " + rule,
                       joined(playExceptionTexts(covered)), joined(playExceptionTexts(exceptions)));
}

std::string reasonsOf(const Decision &decision, const DecisionRequest &request,
                      const ProfileSession &session)
{
    const Explanation why = explain(decision, request);
    std::string text;
    if (why.video.action == Action::Transcode)
        appendPart(text, "video", videoReasons(decision, why.video, session));
    if (why.audio.action == Action::Transcode)
        appendPart(text, "audio", audioReasons(decision, why.audio, session));
    if (decision.containerChanges)
        appendPart(text, "container", containerReasons(decision, why.container, session));
    return text;
}

} // namespace vornak::tool

#include "tools/decide/decision_text.h"

#include "tools/decide/reason_text.h"
#include "tools/decide/surroundings.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>

namespace vornak::tool {
namespace {

std::string videoText(const VideoStream &video, int playExceptions)
{
    std::string text = printable(video.codecName);
    if (!video.profileName.empty()) text += ' ' + printable(video.profileName);
    if (video.level > 0) text += fmt::format(" level {}", video.level);
    text += fmt::format(", {}x{}, {}", video.width, video.height,
                        bitRateText(video.bitrate, video.bitrateEstimated));
    if (playExceptions != 0)
        text +=
            fmt::format(", play exceptions {}", fmt::join(playExceptionTexts(playExceptions), "|"));
    return text;
}

std::string trackText(const AudioTrack &track, std::size_t tracks)
{
    std::string text = printable(track.codecName);
    if (!track.profileName.empty()) text += ' ' + printable(track.profileName);
    text += fmt::format(", {}, {} Hz, {}", channelsText(track.channels), track.sampleRate,
                        bitRateText(track.bitrate, track.bitrateEstimated));
    if (tracks > 1) text += fmt::format(", track {} of {}", track.number, tracks);
    return text;
}

/// Whether the reasons don't name the rule that describes the output.
bool lacksOutputRule(const Part &part)
{
    return std::none_of(part.reasons.begin(), part.reasons.end(), [&](const Reason &reason) {
        return reason.rule.record == part.rule.record && !reason.refusal && reason.exceptions == 0;
    });
}

/// "video: transcode: REASONS; output as in rule 0 (h264, line 5)"
std::string partText(std::string_view name, const Part &part, const std::string &reasons,
                     const std::string &rule, const Decision &decision)
{
    const Colours &c = colours();
    const std::string_view colour = part.action == Action::Transcode ? c.change
                                    : part.action == Action::Keep    ? c.good
                                                                     : std::string_view{};
    const bool saysOutput =
        part.action == Action::Transcode && !decision.isRefused() && lacksOutputRule(part);
    return fmt::format("{}: {}{}{}: {}{}{}", name, colour, nameOf(part.action),
                       colour.empty() ? colour : c.reset, reasons,
                       saysOutput ? "; output as in " : "", saysOutput ? rule : "");
}

/// "other audio: track 2 (ac3, 6 channels) would be taken as it is"
std::string otherTracksText(const Decision &decision)
{
    std::string tracks;
    for (const int number : decision.otherTracks) {
        const AudioTrack &track = decision.media.audio[static_cast<std::size_t>(number - 1)];
        tracks += fmt::format("{}track {} ({}, {}{}{})", tracks.empty() ? "" : ", ", number,
                              printable(track.codecName), channelsText(track.channels),
                              track.language.empty() ? "" : ", ", printable(track.language));
    }
    const bool isOne = decision.otherTracks.size() == 1;
    return tracks.empty() ? tracks
                          : fmt::format("other audio: {} would be taken as {}", tracks,
                                        isOne ? "it is" : "they are");
}

/// The line of the rule whose doing a part is, or else of the one that it follows.
int lineOf(const Part &part, const ProfileSession &session)
{
    const void *first = part.reasons.empty() ? nullptr : part.reasons.front().rule.record;
    return session.lineOf(first ? first : part.rule.record);
}

void addParts(const Decision &decision, const Explanation &explanation,
              const ProfileSession &session, std::vector<ShownLine> &lines)
{
    const Part &video = explanation.video;
    if (decision.isVideo)
        lines.push_back({partText("video", video, videoReasons(decision, video, session),
                                  ruleText(video.rule, session), decision),
                         lineOf(video, session)});
    const Part &audio = explanation.audio;
    lines.push_back({partText("audio", audio, audioReasons(decision, audio, session),
                              ruleText(audio.rule, session), decision),
                     lineOf(audio, session)});
    if (std::string others = otherTracksText(decision); !others.empty())
        lines.push_back({std::move(others)});
    const Part &container = explanation.container;
    lines.push_back(
        {partText("container", container, containerReasons(decision, container, session),
                  entryText(container.rule, session), decision),
         lineOf(container, session)});
}

ShownLine forbiddenLine(const Explanation &explanation, const ProfileSession &session)
{
    const Colours &c = colours();
    std::string rules;
    for (const RuleRef &rule : explanation.forbidding) {
        const bool isVideoRule = explanation.forbidsVideoRule && rules.empty();
        if (!rules.empty()) rules += " and ";
        rules += isVideoRule ? "video " + ruleText(rule, session)
                             : "container " + entryText(rule, session) + " of audio " +
                                   ruleText(explanation.audio.rule, session);
    }
    const auto &forbidding = explanation.forbidding;
    return {fmt::format("result: {}refused{}: NOTRANSCODE of {} forbids to transcode", c.bad,
                        c.reset, rules),
            forbidding.empty() ? 0 : session.lineOf(forbidding.front().record)};
}

std::string_view resultText(const Decision &decision)
{
    switch (decision.outcome) {
    case Outcome::Kept:
        return "keep";
    case Outcome::Remuxed:
        return "remux";
    case Outcome::Audio:
        return "transcode audio";
    default:
        return decision.transcodesAudio() ? "transcode video and audio" : "transcode video";
    }
}

std::string announced(const char *text)
{
    return text ? printable(text) : "none";
}

std::string resultLine(const Decision &decision)
{
    const Colours &c = colours();
    return fmt::format("result: {}{}{}{}", decision.outcome == Outcome::Kept ? c.good : c.change,
                       resultText(decision), c.reset,
                       decision.isSeekable() ? "" : ", into an output that can't be sought in");
}

std::string outputLine(const Decision &decision)
{
    const bool sameContainer = decision.outputFormatId == decision.media.formatId;
    return fmt::format("output: container {}, MIME type {}, DLNA profile {}",
                       sameContainer ? printable(decision.media.containerName)
                                     : containerText(decision.outputFormatId),
                       announced(decision.mime), announced(decision.dlnaProfile));
}

std::string verdictText(const Visit &visit, RuleKind kind)
{
    const std::string_view what = kind == RuleKind::Codec ? "codec" : "container";
    switch (visit.verdict) {
    case Verdict::Takes:
        return "takes it";
    case Verdict::TakesAny:
        return fmt::format("takes any {}", what);
    case Verdict::Unmatched:
        return "taken without matching";
    case Verdict::OtherCodec:
        return fmt::format("another {}", what);
    case Verdict::Refuses:
        break;
    }
    std::string text = "refuses it: ";
    for (std::size_t i = 0; i < visit.refusals.size(); ++i) {
        if (i > 0) text += i == 1 ? "; also " : "; ";
        text += refusalText(visit.refusals[i], "it");
    }
    return text;
}

std::string visitText(const Visit &visit, RuleKind kind, const Decision &decision,
                      const ProfileSession &session)
{
    const RuleRef ref{visit.record, visit.position, visit.id};
    std::string text = kind == RuleKind::Codec ? ruleText(ref, session) : entryText(ref, session);
    text += ": " + verdictText(visit, kind);
    if (visit.coveredExceptions != 0)
        text += "; " + partlyCoveredText("", visit.coveredExceptions, decision.video.codecFlag);
    if (visit.isNearestMiss) text += " (the nearest miss)";
    return text;
}

VisitedRules visited(const std::string &what, const std::vector<Visit> &visits, RuleKind kind,
                     const Decision &decision, const ProfileSession &session)
{
    VisitedRules rules{fmt::format("{}:{}", what, visits.empty() ? " none" : ""), {}};
    for (const Visit &visit : visits)
        rules.rules.push_back(
            {visitText(visit, kind, decision, session), session.lineOf(visit.record)});
    return rules;
}

std::string subtitlesText(const SubtitleSearch &search)
{
    if (!search.error.empty()) return "unknown, " + search.error;
    std::string text;
    for (const SubtitleFile &file : search.files) {
        if (!text.empty()) text += ", ";
        text += fmt::format("{} ({}{}{})", printable(file.name), file.kind,
                            file.language.empty() ? "" : ", ", printable(file.language));
    }
    return text.empty() ? "none" : text;
}

std::string hardwareText(const Surroundings &around, const RuleRef &rule,
                         const ProfileSession &session)
{
    const std::string name = ruleText(rule, session);
    if (!around.ruleAllowsHardware)
        return fmt::format("{} does not allow the hardware transcoder", name);
    if (!around.hardwareServes())
        return fmt::format("{} allows the hardware transcoder, but none is installed", name);
    return fmt::format("{} allows the hardware transcoder, and agent {} is installed", name,
                       around.hardwareAgent);
}

std::string elementText(const char *element)
{
    return element ? printable(element) : "none";
}

} // namespace

std::string sourceText(const Decision &decision)
{
    const MediaInfo &media = decision.media;
    std::string text = printable(media.containerName);
    if (media.video) text += "; " + videoText(*media.video, decision.video.codecFlag);
    const AudioTrack *track = decision.audioTrack();
    return text + "; " + (track ? trackText(*track, media.audio.size()) : "no audio");
}

std::vector<ShownLine> decisionLines(const Decision &decision, const Explanation &explanation,
                                     const ProfileSession &session)
{
    std::vector<ShownLine> lines;
    addParts(decision, explanation, session, lines);
    if (decision.isRefused()) {
        lines.push_back(forbiddenLine(explanation, session));
    } else {
        lines.push_back({resultLine(decision)});
        lines.push_back({outputLine(decision)});
    }
    return lines;
}

std::string textOf(const std::string &path, const Decision &decision,
                   const Explanation &explanation, const ProfileSession &session)
{
    const Colours &c = colours();
    std::string text =
        fmt::format("{}{}{}: {}\n", c.name, printable(path), c.reset, sourceText(decision));
    for (const ShownLine &line : decisionLines(decision, explanation, session))
        text += "  " + line.text + '\n';
    return text;
}

std::string subtitlesLine(const Surroundings &around, const Decision &decision)
{
    return decision.isVideo ? fmt::format("  subtitles: {}\n", subtitlesText(around.subtitles))
                            : "";
}

std::string equipmentLines(const Surroundings &around, const Decision &decision,
                           const Explanation &explanation, const ProfileSession &session)
{
    std::string text, videoDecoder;
    if (decision.isVideo) {
        text =
            fmt::format("  hardware: {}\n", hardwareText(around, explanation.video.rule, session));
        videoDecoder = fmt::format(", video decoder {}", elementText(around.videoDecoder));
    }
    return text + fmt::format("  elements: demuxer {}{}, audio decoder {}, muxer {}\n",
                              elementText(around.demuxer), videoDecoder,
                              elementText(around.audioDecoder), elementText(around.muxer));
}

std::string briefText(const std::string &path, const MainReason &reason)
{
    const Colours &c = colours();
    const std::string_view colour = reason.outcome == Outcome::Kept      ? c.good
                                    : reason.outcome == Outcome::Refused ? c.bad
                                                                         : c.change;
    return fmt::format("{}: {}{}{}: {}\n", printable(path), colour, nameOf(reason.outcome), c.reset,
                       reason.text);
}

std::vector<VisitedRules> visitedRules(const Decision &decision, const Explanation &explanation,
                                       const ProfileSession &session)
{
    std::vector<VisitedRules> all;
    std::string where;
    if (decision.isVideo) {
        all.push_back(visited("video rules visited", explanation.videoVisits, RuleKind::Codec,
                              decision, session));
        if (decision.videoRule) where = " in video " + ruleText(explanation.video.rule, session);
    }
    if (!decision.isSilent)
        all.push_back(visited("audio rules visited" + where, explanation.audioVisits,
                              RuleKind::Codec, decision, session));
    where.clear();
    if (explanation.searchedRule.record)
        where = " in audio " + ruleText(explanation.searchedRule, session);
    all.push_back(visited("container entries visited" + where, explanation.entryVisits,
                          RuleKind::Container, decision, session));
    return all;
}

std::string visitsText(const Decision &decision, const Explanation &explanation,
                       const ProfileSession &session)
{
    std::string text;
    for (const VisitedRules &walk : visitedRules(decision, explanation, session)) {
        text += "  " + walk.heading + '\n';
        for (const ShownLine &rule : walk.rules) text += "    " + rule.text + '\n';
    }
    return text;
}

std::string textOf(const Totals &totals)
{
    std::string text = fmt::format("{} {}:", totals.files, totals.files == 1 ? "file" : "files");
    for (int i = 0; i < kOutcomes; ++i) {
        const auto outcome = static_cast<Outcome>(i);
        text += fmt::format("{} {} {}", i > 0 ? "," : "", totals.of(outcome), nameOf(outcome));
    }
    if (totals.skipped > 0) text += fmt::format("; {} skipped as no media", totals.skipped);
    return text + '\n';
}

std::string countedReasons(const Totals &totals)
{
    std::string text;
    if (totals.files < 2) return text;
    for (const ReasonCounts::Row &row : totals.reasons.rows())
        text += fmt::format("  {} {}: {}: {}\n", row.files, row.files == 1 ? "file" : "files",
                            nameOf(row.outcome), row.text);
    return text;
}

} // namespace vornak::tool

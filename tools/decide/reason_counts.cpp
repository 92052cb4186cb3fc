#include "tools/decide/reason_counts.h"

#include "tools/decide/reason_text.h"
#include "tools/profile/profile_session.h"

#include <algorithm>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

/// What is said of all files of an error, whose messages are of one file each.
constexpr struct {
    std::string_view code, text;
    bool isOfFile; ///< whatever the profile
} s_Errors[] = {
    {"cannot-open", "missing, not permitted, neither file nor folder", true},
    {"cannot-probe", "empty, damaged or no media", true},
    {"no-streams", "neither video nor audio in it", true},
    {"still-image", "a still image", true},
    {"no-such-track", "no audio track of that number", true},
    {"no-section", "no valid rule in the profile for such files", false},
    {"no-audio-rule", "no valid ACODEC in the video rule", false},
    {"no-container", "no valid FORMAT in the audio rule", false},
};

std::string errorText(std::string_view code)
{
    const auto row = std::ranges::find(s_Errors, code, [](const auto &one) { return one.code; });
    return std::string(row == std::end(s_Errors) ? code : row->text);
}

using PartText = std::string (*)(const Decision &, const Part &, const ProfileSession &);

struct NamedPart {
    std::string_view name;
    const Part &part;
    PartText text;
};

NamedPart mainPart(const Decision &decision, const Explanation &why)
{
    const NamedPart parts[] = {{"video", why.video, videoReasons},
                               {"audio", why.audio, audioReasons},
                               {"container", why.container, containerReasons}};
    for (const NamedPart &one : parts)
        if (one.part.action == Action::Transcode) return one;
    return parts[decision.isVideo ? 0 : 1];
}

/// That no rule takes the sound is the doing of the video rule around those that were asked.
int lineOf(const Reason &reason, std::string_view part, const Decision &decision,
           const ProfileSession &session)
{
    const bool isVideoRules = reason.code == ReasonCode::NoRule && part == "audio";
    return session.lineOf(isVideoRules ? decision.videoRule : reason.rule.record);
}

} // namespace

MainReason mainReason(const Decision &decision, const Explanation &explanation,
                      const ProfileSession &session)
{
    const NamedPart main = mainPart(decision, explanation);
    MainReason result{.outcome = decision.outcome, .part = main.name};
    if (main.part.reasons.empty()) return result;
    const Reason &reason = main.part.reasons.front();
    result.code = nameOf(reason);
    result.line = lineOf(reason, main.name, decision, session);
    result.text = main.text(decision, {main.part.action, main.part.rule, {reason}}, session);
    result.ofMany = reason.refusal ? refusalOfMany(*reason.refusal, ruleText(reason.rule, session))
                                   : result.text;
    return result;
}

MainReason mainReason(const Undecided &undecided)
{
    return {.outcome = undecided.outcome,
            .code = undecided.code,
            .text = undecided.message,
            .ofMany = errorText(undecided.code)};
}

bool isOfFile(std::string_view code)
{
    return std::ranges::any_of(s_Errors,
                               [&](const auto &row) { return row.isOfFile && row.code == code; });
}

void ReasonCounts::add(const MainReason &reason)
{
    if (reason.outcome == Outcome::Kept) return;
    const std::string key =
        fmt::format("{} {} {} {}", nameOf(reason.outcome), reason.ofMany, reason.part, reason.code);
    Row &row = rows_[key];
    if (row.files++ == 0)
        row = {1, reason.outcome, reason.part, reason.code, reason.ofMany, reason.line};
}

std::vector<ReasonCounts::Row> ReasonCounts::rows() const
{
    std::vector<Row> rows;
    for (const auto &[key, row] : rows_) rows.push_back(row);
    std::ranges::stable_sort(rows, std::greater<>(), &Row::files);
    return rows;
}

} // namespace vornak::tool

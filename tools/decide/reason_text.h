// Rules, comparisons and reasons in words.
#pragma once

#include "tools/decide/explanation.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vornak::tool {

class ProfileSession;

/// Container entries and codec rules have their names in different places of the registry.
enum class RuleKind { Codec, Container };

struct ReasonRow {
    ReasonCode code;
    std::string_view name; ///< stable; listed in docs/json.md
    RuleKind kind;         ///< of the reason's rule
    std::string_view text;
};

inline constexpr ReasonRow s_Reasons[] = {
    {ReasonCode::Taken, "taken", RuleKind::Codec, "{rule} takes it"},
    {ReasonCode::AnyCodec, "any-codec", RuleKind::Codec, "{rule} takes any codec"},
    {ReasonCode::NotMatched, "not-matched", RuleKind::Codec,
     "{rule}, not matched because of --no-match-video"},
    {ReasonCode::NoAudio, "no-audio", RuleKind::Codec, "the file has no audio"},
    {ReasonCode::AudioTrack, "audio-track", RuleKind::Codec,
     "--audio-track assigns a track, and then a video is transcoded"},
    {ReasonCode::NoRule, "no-rule", RuleKind::Codec, "no rule for {codec}{where}"},
    {ReasonCode::Compared, "", RuleKind::Codec, "{comparison}"}, // it has a name of its own
    {ReasonCode::ContainerForbidden, "container-forbidden", RuleKind::Codec,
     "{rule} takes it, but not in this container, and its first one must not be made "
     "(NOTRANSCODE)"},
    {ReasonCode::FirstContainerForbidden, "first-container-forbidden", RuleKind::Codec,
     "{rule} takes it, but its first container, which the output needs, must not be made "
     "(NOTRANSCODE)"},
    {ReasonCode::ExceptionsPartlyCovered, "play-exceptions-partly-covered", RuleKind::Codec,
     "{covered}"},
    {ReasonCode::Forced, "forced", RuleKind::Codec, "forced by --force"},
    {ReasonCode::EntryTaken, "taken", RuleKind::Container, "{entry} of audio {audio} takes it"},
    {ReasonCode::AnyContainer, "any-container", RuleKind::Container,
     "{entry} of audio {audio} takes any container"},
    {ReasonCode::Preferred, "preferred", RuleKind::Container,
     "{entry} of audio {audio} is preferred by --prefer"},
    {ReasonCode::PreferredNotListed, "preferred-not-listed", RuleKind::Codec,
     "audio {audio} does not list what --prefer names"},
    {ReasonCode::NoEntry, "no-entry", RuleKind::Codec,
     "{container}, audio {audio} does not list it"},
    {ReasonCode::OutputOfRule, "output-of-rule", RuleKind::Container,
     "{entry} is the first of audio {audio}, and a stream is transcoded"},
    {ReasonCode::NotSeekable, "not-seekable", RuleKind::Container,
     "{entry} of audio {audio} can't be sought in (NONSEEKABLE)"},
};

consteval bool haveRows()
{
    std::size_t row = 0;
    for (const ReasonRow &reason : s_Reasons)
        if (reason.code != static_cast<ReasonCode>(row++)) return false;
    return row == static_cast<std::size_t>(ReasonCode::End);
}
static_assert(haveRows(), "each code has its row, in order");

constexpr const ReasonRow &rowOf(ReasonCode code)
{
    return s_Reasons[static_cast<std::size_t>(code)];
}

/// The reason's stable name, which is the comparison's if it was one.
std::string_view nameOf(const Reason &reason);

/// How rules and entries are called: "rule 0 (aac, line 14)", "entry 1 (mp4, line 16)".
std::string ruleText(const RuleRef &rule, const ProfileSession &session);
std::string entryText(const RuleRef &entry, const ProfileSession &session);

/// "6 channels, rule 0 (aac, line 14) allows 2", with `who` for the rule
std::string refusalText(const Refusal &refusal, std::string_view who);

/// The same without the source's side: "channels, rule 0 (aac, line 14) allows 2"
std::string refusalOfMany(const Refusal &refusal, std::string_view who);

/// The reasons of a part, one after the other.
std::string videoReasons(const Decision &decision, const Part &part, const ProfileSession &session);
std::string audioReasons(const Decision &decision, const Part &part, const ProfileSession &session);
std::string containerReasons(const Decision &decision, const Part &part,
                             const ProfileSession &session);

/// Why a file is not sent as it is: "audio: 6 channels, rule 0 (aac, line 14) allows 2".
std::string reasonsOf(const Decision &decision, const DecisionRequest &request,
                      const ProfileSession &session);

/// What keeps a rule from excluding play exceptions that its set covers in part.
/// @param rule  its name; empty: the text before has named it
std::string partlyCoveredText(const std::string &rule, int covered, int exceptions);

} // namespace vornak::tool

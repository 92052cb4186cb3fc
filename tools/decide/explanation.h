// Why a decision came out as it did, as data; the texts are made of it.
#pragma once

#include "tools/decide/decision.h"
#include "tools/decide/rule_walk.h"

#include <optional>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// A rule or container entry of the profile.
struct RuleRef {
    const void *record = nullptr; ///< null: none
    int position = 0;
    int id = 0;
};

/// In the order of the table in reason_text.cpp, which has their names and texts.
enum class ReasonCode {
    // of a stream
    Taken,
    AnyCodec,
    NotMatched,
    NoAudio,
    AudioTrack,
    NoRule,
    Compared,
    ContainerForbidden,
    FirstContainerForbidden,
    ExceptionsPartlyCovered,
    // of a stream or the container
    Forced,
    // of the container
    EntryTaken,
    AnyContainer,
    Preferred,
    PreferredNotListed,
    NoEntry,
    OutputOfRule,
    NotSeekable,
    End
};

struct Reason {
    ReasonCode code;
    RuleRef rule = {};                             ///< whose doing it is; may be none
    std::optional<Refusal> refusal = std::nullopt; ///< what was Compared
    int exceptions = 0;                            ///< play exceptions that the rule's set covers
};

enum class Action { None, Keep, Transcode };
std::string_view nameOf(Action action);

/// What happens to the video, the audio or the container.
struct Part {
    Action action = Action::None;
    RuleRef rule; ///< the rule taken: the one that keeps it, or the one that its output follows
    std::vector<Reason> reasons;
};

struct Explanation {
    Part video, audio, container;
    std::vector<RuleRef> forbidding; ///< whose NOTRANSCODE a refusal is owed to
    bool forbidsVideoRule = false;   ///< the first of them is a video rule, not an entry

    std::vector<Visit> videoVisits;
    std::vector<Visit> audioVisits;
    std::vector<Visit> entryVisits; ///< empty: no entry was searched for
    RuleRef searchedRule;           ///< the audio rule whose entries were visited
};

Explanation explain(const Decision &decision, const DecisionRequest &request);

} // namespace vornak::tool

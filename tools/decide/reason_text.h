// Rules, comparisons and reasons in words.
#pragma once

#include "tools/decide/explanation.h"

#include <set>
#include <string>
#include <string_view>

namespace vornak::tool {

class ProfileSession;

/// The codes of all reasons that there are words for.
std::set<std::string_view> reasonCodes();

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

/// What the source has, with its unit.
std::string channelsText(int channels);
std::string bitRateText(int bitrate, bool estimated);

} // namespace vornak::tool

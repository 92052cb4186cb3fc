// Rules, comparisons and reasons in words.
#pragma once

#include "explanation.h"

#include <string>
#include <string_view>

namespace vornak::tool {

class ProfileSession;

/// How rules and entries are called: "rule 0 (aac, line 14)", "entry 1 (mp4, line 16)".
std::string ruleText(const RuleRef &rule, const ProfileSession &session);
std::string entryText(const RuleRef &entry, const ProfileSession &session);

/// "6 channels, rule 0 (aac, line 14) allows 2", with `who` for the rule
std::string refusalText(const Refusal &refusal, std::string_view who);

/// The reasons of a part, one after the other.
std::string videoReasons(const Decision &decision, const Part &part, const ProfileSession &session);
std::string audioReasons(const Decision &decision, const Part &part, const ProfileSession &session);
std::string containerReasons(const Decision &decision, const Part &part,
                             const ProfileSession &session);

/// What keeps a rule from excluding play exceptions that its set covers in part.
std::string partlyCoveredText(int covered, int exceptions);

/// What the source has, with its unit.
std::string channelsText(int channels);
std::string bitRateText(int bitrate, bool estimated);

} // namespace vornak::tool

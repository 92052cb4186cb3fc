// What a rule takes, in words that people know.
#pragma once

#include "base/rule_tables.h"

#include <string>
#include <vector>

namespace vornak::tool {

using Words = std::vector<std::string>;

/// "a", "a or b", "a, b or c".
std::string listed(const Words &words, const char *last);

/// Adds a word that isn't there yet.
void addNew(Words &words, const std::string &word);

/// Whether what a rule takes is sent as it is or not at all.
inline bool isForbidden(const VideoRule &rule)
{
    return rule.noTranscode == 1;
}
inline bool isForbidden(const AudioRule &)
{
    return false; // where it has no effect
}

/// "H.264 Main or High up to level 4.1, 1920×1080 and 25 Mbit/s, but not interlaced".
/// @param any  what the wildcard is called
std::string ruleWords(const VideoRule &rule, const char *any = "anything else");
std::string ruleWords(const AudioRule &rule, const char *any = "anything else");

} // namespace vornak::tool

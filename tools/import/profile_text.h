// A Device profile as a file: its rules, each with a comment that says where it comes from.
#pragma once

#include "tools/import/rules.h"

#include <string>

namespace vornak::tool {

/// @param made  what made it of what, for the first line of its comment
std::string profileText(const Player &player, const DeviceRules &rules, const std::string &made);

/// A remark in one line, with its place if it has one: "tv.json:12: stricter: ...".
std::string remarkText(const Remark &remark);

} // namespace vornak::tool

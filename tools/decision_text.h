// A decision in words.
#pragma once

#include "decide_files.h"
#include "explanation.h"

#include <string>
#include <string_view>

namespace vornak::tool {

class ProfileSession;

/// The lines of one file: its streams, what happens to each part and why, and the output.
/// @param withVisits  also the rules that were visited
std::string textOf(const std::string &path, const Decision &decision,
                   const Explanation &explanation, const ProfileSession &session, bool withVisits);

/// The line that sums up.
std::string textOf(const Totals &totals);

} // namespace vornak::tool

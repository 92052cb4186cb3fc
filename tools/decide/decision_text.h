// A decision in words.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/decide/explanation.h"

#include <string>
#include <string_view>

namespace vornak::tool {

class ProfileSession;
struct Surroundings;

/// The lines of one file: its streams, what happens to each part and why, and the output.
std::string textOf(const std::string &path, const Decision &decision,
                   const Explanation &explanation, const ProfileSession &session);

/// The lines about subtitles, hardware and elements.
std::string textOf(const Surroundings &around, const Decision &decision,
                   const Explanation &explanation, const ProfileSession &session);

/// The rules that were visited.
std::string visitsText(const Decision &decision, const Explanation &explanation,
                       const ProfileSession &session);

/// The line that sums up.
std::string textOf(const Totals &totals);

} // namespace vornak::tool

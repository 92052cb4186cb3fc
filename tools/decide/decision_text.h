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

/// The line about a video's subtitle files; nothing for music.
std::string subtitlesLine(const Surroundings &around, const Decision &decision);

/// The lines about hardware and elements.
std::string equipmentLines(const Surroundings &around, const Decision &decision,
                           const Explanation &explanation, const ProfileSession &session);

/// One line: the file, its outcome and the one reason.
std::string briefText(const std::string &path, const MainReason &reason);

/// The rules that were visited.
std::string visitsText(const Decision &decision, const Explanation &explanation,
                       const ProfileSession &session);

/// The line that sums up.
std::string textOf(const Totals &totals);

/// A line for each reason, indented; nothing for a file alone, which has its own.
std::string countedReasons(const Totals &totals);

} // namespace vornak::tool

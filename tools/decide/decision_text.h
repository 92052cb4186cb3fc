// A decision in words.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/decide/explanation.h"

#include <string>
#include <vector>

namespace vornak::tool {

class ProfileSession;
struct Surroundings;

struct ShownLine {
    std::string text;
    int line = 0; ///< of the profile, where the rule stands that it speaks of; 0: of none
};

/// The file's container and streams, with the audio track that is decided about.
std::string sourceText(const Decision &decision);

/// What happens to each part and why, and the output.
std::vector<ShownLine> decisionLines(const Decision &decision, const Explanation &explanation,
                                     const ProfileSession &session);

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

struct VisitedRules {
    std::string heading;
    std::vector<ShownLine> rules;
};

/// The rules that were visited: for the video, the audio and the container.
std::vector<VisitedRules> visitedRules(const Decision &decision, const Explanation &explanation,
                                       const ProfileSession &session);

/// The same as lines.
std::string visitsText(const Decision &decision, const Explanation &explanation,
                       const ProfileSession &session);

/// The line that sums up.
std::string textOf(const Totals &totals);

/// A line for each reason, indented; nothing for a file alone, which has its own.
std::string countedReasons(const Totals &totals);

} // namespace vornak::tool

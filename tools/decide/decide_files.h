// From the names on the command line to a decision for each file, by all cores, in their order.
#pragma once

#include "tools/decide/decision.h"
#include "tools/decide/media_source.h"
#include "tools/decide/reason_counts.h"
#include "tools/profile/profile_session.h"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vornak::tool {

using FileResult = std::variant<Decision, Undecided>;

Outcome outcomeOf(const FileResult &result);

/// Any thread.
FileResult decideFile(const ProfileSession &session, const DecisionRequest &request,
                      ProbeResult probe);

/// One file that is decided about, with what the decision belongs to.
struct DecidedFile {
    std::string path;
    DecisionRequest request;
    ProfileSession session;
    Decision decision;
};

/// Loads the profile, saying what the library warns of, and decides. None: said why, too.
/// Throws ProfileError.
std::optional<DecidedFile> decideOne(const std::string &profile, const DecisionRequest &request,
                                     SeenFile file);

/// What a file adds to the output.
struct FileText {
    std::string text;       ///< for standard output, perhaps none
    MainReason reason = {}; ///< to be counted
};

/// Runs on many threads. The file's media has gone into the result.
using RenderFile = std::function<FileText(const SeenFile &file, const FileResult &result)>;

struct Totals {
    std::size_t files = 0;
    std::array<std::size_t, kOutcomes> outcomes = {};
    std::size_t skipped = 0;   ///< in folders, what is no media
    std::size_t undecided = 0; ///< files for which there is no decision
    std::size_t shown = 0;     ///< files with a text
    ReasonCounts reasons;

    void add(Outcome outcome)
    {
        ++files;
        ++outcomes[static_cast<std::size_t>(outcome)];
    }
    std::size_t of(Outcome outcome) const { return outcomes[static_cast<std::size_t>(outcome)]; }
};

/**
 * Decides about all the media. Writes the rendered texts to standard output, `separator` between
 * them, and a line on standard error for each file that can't be decided about; shows how far it
 * has come.
 */
Totals decideFiles(const ProfileSession &session, const DecisionRequest &request,
                   const MediaNames &media, std::string_view separator, const RenderFile &render);

} // namespace vornak::tool

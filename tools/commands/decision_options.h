// The options that subcommands about media files share.
#pragma once

#include "tools/decide/decision.h"
#include "tools/files/media_list.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vornak::tool {

/// Options as they stand on the command line.
struct DecisionOptions {
    std::string profile;
    MediaNames media;
    std::string prefer; ///< CONTAINER[/SUBTYPE], or empty
    bool force = false;
    int audioTrack = 0;
    bool noMatchVideo = false;
    std::vector<std::string> playExceptions;
};

void addProfileOption(CLI::App &command, std::string &profile);
/// Lets what was given for a profile be a name as well: a path takes its place.
void takeProfileNames(CLI::App &command, std::string &profile);

/// MEDIA, with --null for the list that may be among it.
void addMediaArgument(CLI::App &command, MediaNames &media);

/// Those that reach the library's arguments, but for `force`.
void addMatchingOptions(CLI::App &command, DecisionOptions &options);

/// All of the above, with --force.
void addDecisionOptions(CLI::App &command, DecisionOptions &options);

/// Looks the names up in the registry. Throws std::runtime_error with a line for the user.
DecisionRequest resolve(const DecisionOptions &options);

} // namespace vornak::tool

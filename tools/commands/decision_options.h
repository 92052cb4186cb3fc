// The options that subcommands about media files share.
#pragma once

#include "tools/decide/decision.h"
#include "tools/files/media_list.h"

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

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
CLI::Option *addMediaArgument(CLI::App &command, MediaNames &media);

/// The same, and --probed for lines that stand in for it.
void addMediaOrProbed(CLI::App &command, MediaNames &media);
/// --probed alone. @param media  the argument whose place it takes, which isn't required then
CLI::Option *addProbedOption(CLI::App &command, std::string &probed, CLI::Option &media);

/// Those that reach the library's arguments, but for `force`.
void addMatchingOptions(CLI::App &command, DecisionOptions &options);

/// All of the above, with --force.
void addDecisionOptions(CLI::App &command, DecisionOptions &options);

/// What the options ask for, with names looked up in the registry. Throws std::runtime_error with a
/// line for the user.
DecisionRequest requestOf(const DecisionOptions &options);

/// The same, where there are media as well. @param profile  what of them may be standard input
DecisionRequest resolve(const DecisionOptions &options);

/// Throws where nothing is named, or where standard input is to be two things.
void checkMedia(const MediaNames &media, bool readsProfile);

} // namespace vornak::tool

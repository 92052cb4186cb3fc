// Where a profile that was made goes.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vornak::tool {

struct ProfileOutput {
    std::string path; ///< empty: standard output
    bool replace = false;
};

void addOutputOptions(CLI::App &command, ProfileOutput &output);

/// Writes the profile. A file appears whole or not at all; throws a line for the user.
/// @param mode  of the file; 0: as new ones are
void writeProfile(const std::string &text, const ProfileOutput &output, unsigned mode = 0);

} // namespace vornak::tool

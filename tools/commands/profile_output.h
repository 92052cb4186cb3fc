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
void writeProfile(const std::string &text, const ProfileOutput &output);

} // namespace vornak::tool

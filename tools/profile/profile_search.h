// Profiles by name: the files NAME.xml of a few folders.
#pragma once

#include <string>
#include <vector>

namespace vornak::tool {

struct NamedProfile {
    std::string name, path;
};

/// Where profiles are looked for by name, the first folder first: the user's, the machine's and
/// the examples that are installed with the program.
std::vector<std::string> profileFolders();

/// All that can be found by name, in the order of the names; of one name the first folder's.
std::vector<NamedProfile> namedProfiles();

/// The path that an argument stands for: its own where it holds a "/", ends in ".xml" or is "-",
/// else that of the profile of this name, else its own where that is there. Throws
/// std::runtime_error where there is none, with a line for the user.
std::string findProfile(const std::string &pathOrName);

} // namespace vornak::tool

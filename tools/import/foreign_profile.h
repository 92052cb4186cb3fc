// Any foreign profile, told apart by what the file holds.
#pragma once

#include "tools/import/player.h"

#include <string>
#include <vector>

namespace vornak::tool {

struct ImportOptions {
    std::string file;
    std::string name;               ///< of the player; empty: the file's
    std::vector<std::string> names; ///< of DLNA profiles
    std::string sink;               ///< a protocolInfo list
    bool relaxed = false;
};

/// What the file says that the player takes. Throws ProfileError, or a line for the user.
Player readForeignProfile(const ImportOptions &options);

} // namespace vornak::tool

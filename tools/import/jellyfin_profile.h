// Jellyfin's device profiles: JSON objects that list what is played and under which conditions.
#pragma once

#include "tools/import/player.h"

#include <string>

namespace vornak::tool {

/// What the profile says that the player takes. Throws ProfileError.
Player readJellyfinProfile(const std::string &path, const std::string &text);

} // namespace vornak::tool

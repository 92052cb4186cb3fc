// A player as its owner describes it on the command line.
#pragma once

#include "tools/import/player.h"

#include <string>
#include <vector>

namespace vornak::tool {

struct Description {
    std::string name, like;
    std::vector<std::string> video;        ///< "h264:high:4.1,1920x1080,25M"
    std::vector<std::string> audio, music; ///< "aac", "aac:he:2", "ac3:6"
    std::vector<std::string> containers;   ///< "mp4"
};

/// What `--like` takes, with what it stands for: "phone  small pictures, ...".
std::vector<std::string> likeNames();

/// The player. What isn't described is taken from the one that it is like. Throws a line for the
/// user.
Player describedPlayer(Description description);

} // namespace vornak::tool

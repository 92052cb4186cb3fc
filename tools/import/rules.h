// The rules of a Device profile, made from what a player takes.
#pragma once

#include "tools/import/player.h"

#include <set>
#include <string>
#include <vector>

namespace vornak::tool {

struct ContainerRule {
    Container container;
    std::string option;       ///< empty: none
    bool noTranscode = false; ///< nothing is put into it
};

struct SoundRule {
    SoundLimits limits;
    std::string option;
    std::vector<ContainerRule> containers;
    std::set<int> origins;
};

struct PictureRule {
    PictureLimits limits;
    std::string option;
    std::vector<SoundRule> sounds;
    std::set<int> origins;
    int exceptions = 0;       ///< play exceptions
    bool noTranscode = false; ///< what fits it is kept or refused
};

/// Lists whose first rule is what is transcoded to; an empty one: nothing of that kind is played,
/// or nothing of it can be made.
struct DeviceRules {
    std::vector<SoundRule> music;
    std::vector<PictureRule> video;
};

/// Adds to the player's remarks what is left out. Throws a line for the user where there would be
/// no rule at all.
DeviceRules makeRules(Player &player);

} // namespace vornak::tool

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

/// A rule for sound, with its containers, or for pictures, with its rules for sound.
struct Rule {
    Limits limits;
    std::string option;
    std::set<int> origins;
    std::vector<ContainerRule> containers;
    std::vector<Rule> sounds;
    int exceptions = 0;       ///< play exceptions
    bool noTranscode = false; ///< what fits it is kept or refused
};

/// Lists whose first rule is what is transcoded to; an empty one: nothing of that kind is played,
/// or nothing of it can be made.
struct DeviceRules {
    std::vector<Rule> music, video;
};

/// Adds to the player's remarks what is left out. Throws a line for the user where there would be
/// no rule at all.
DeviceRules makeRules(Player &player);

} // namespace vornak::tool

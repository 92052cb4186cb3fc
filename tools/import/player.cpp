#include "tools/import/player.h"

#include <algorithm>

namespace vornak::tool {

int originOf(Player &player, const std::string &origin)
{
    const auto known = std::ranges::find(player.origins, origin);
    const auto position = known - player.origins.begin();
    if (known == player.origins.end()) player.origins.push_back(origin);
    return static_cast<int>(position);
}

} // namespace vornak::tool

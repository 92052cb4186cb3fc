#include "tools/import/player.h"

#include "tools/profile/profile_file.h"
#include "tools/profile/regular_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <filesystem>

namespace vornak::tool {

int originOf(Player &player, const std::string &origin)
{
    const auto known = std::ranges::find(player.origins, origin);
    const auto position = known - player.origins.begin();
    if (known == player.origins.end()) player.origins.push_back(origin);
    return static_cast<int>(position);
}

std::string readForeignFile(const std::string &path)
{
    constexpr std::size_t kLargest = 4'000'000;
    return readRegularFile(profilePath(path), profileTitle(path), kLargest);
}

std::string shownFileName(const std::string &path)
{
    return printable(std::filesystem::path(profileTitle(path)).filename().string());
}

} // namespace vornak::tool

#include "tools/import/player.h"

#include "tools/terminal/printable.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace vornak::tool {

int originOf(Player &player, const std::string &origin)
{
    const auto known = std::ranges::find(player.origins, origin);
    const auto position = known - player.origins.begin();
    if (known == player.origins.end()) player.origins.push_back(origin);
    return static_cast<int>(position);
}

Note noteAt(Player &player, const std::string &file, int line, const std::string &what)
{
    return [&player, file, line, what](Remark::Kind kind, const std::string &reason) {
        player.remarks.insert(
            {file, line, kind, what.empty() ? reason : fmt::format("{}: {}", what, reason)});
    };
}

std::string shownFileName(const std::string &path)
{
    return printable(std::filesystem::path(path).filename().string());
}

} // namespace vornak::tool

#include "tools/import/note.h"

#include "tools/terminal/printable.h"

#include <filesystem>
#include <fmt/format.h>

namespace vornak::tool {

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

// How the readers of foreign profiles say what a Device profile doesn't.
#pragma once

#include "tools/import/player.h"

#include <functional>
#include <string>

namespace vornak::tool {

/// Takes note of what is said more strictly, or not at all. The reason is printable.
using Note = std::function<void(Remark::Kind kind, const std::string &reason)>;

/// Notes as the player's remarks about a line. @param what  before each reason; empty: nothing
Note noteAt(Player &player, const std::string &file, int line, const std::string &what);

/// Tells what else rules turn away on account of what is refused.
void noteOddities(const PictureLimits &limits, const Note &note);

/// The name of a file without its folder, printable.
std::string shownFileName(const std::string &path);

} // namespace vornak::tool

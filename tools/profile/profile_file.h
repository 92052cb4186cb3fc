// Where a profile is read from: "-" is standard input, "./-" a file of that name.
#pragma once

#include <string>

namespace vornak::tool {

/// A path to open the profile at, as often as one likes: what comes on standard input is read to
/// its end by the first call, and kept in memory. Before the first thread starts. Throws
/// std::system_error.
std::string profilePath(const std::string &name);

/// What the profile is called in messages.
std::string profileTitle(const std::string &name);

} // namespace vornak::tool

// A loaded profile, as people and programs read it.
#pragma once

#include <string>

namespace vornak::tool {

class ProfileSession;

/// The tables as a tree, a line for each limit and text.
std::string textOf(const ProfileSession &session);

/// The same as a JSON document. @param path  of the profile
std::string jsonOf(const std::string &path, const ProfileSession &session);

} // namespace vornak::tool

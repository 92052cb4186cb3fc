// The loaded tables of a profile as a JSON document.
#pragma once

#include <string>

namespace vornak::tool {

class ProfileSession;

/// @param path  of the profile
std::string jsonOf(const std::string &path, const ProfileSession &session);

} // namespace vornak::tool

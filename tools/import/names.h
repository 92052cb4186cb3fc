// The registry's ids of names that are known to be in it, and lists of them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// The codec's id; -1: there is no such codec.
int codecNamed(const std::string &name);

/// Whether it is a codec of pictures; all others are of sound.
bool isPicture(int codec);

/// The container's id, with its subtype after a slash ("mp4/isom"); -1: there is no such container.
int containerNamed(const std::string &name);

/// The bits of profiles, or of play exceptions, with bars between the names.
int profilesNamed(std::string_view names);
int playExceptionsNamed(std::string_view names);

/// All profiles of a codec, as bits.
int allProfilesOf(int codec);

/// The pieces of a list without blanks around them; empty ones are left out.
std::vector<std::string> splitList(std::string_view list, char separator);

std::string lowerCase(std::string_view text);

} // namespace vornak::tool

// Ids and bits by the registry's names, and numbers with their units, for people.
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

/// A codec's name, "any" for the wildcard, "codec 123" for an id that the registry doesn't know.
std::string codecText(int id);

/// A container's name, with its subtype after a slash: "mp4/isom".
std::string containerText(int id);

/// The names of profile bits in rising order; a bit without a name shows as "0x400".
std::vector<std::string> profileTexts(int bits, int codecId);

/// The same for play exceptions.
std::vector<std::string> playExceptionTexts(int bits);

/// All profiles of a codec, as bits; 0: none are known.
int allProfilesOf(int codecId);

/// All names of containers and of play exceptions, to look for the nearest.
std::vector<std::string> knownContainers();
std::vector<std::string> knownSubtypes(int containerId);
std::vector<std::string> knownPlayExceptions();

/// The pieces of a list without blanks around them; empty ones are left out.
std::vector<std::string> splitList(std::string_view list, char separator = '|');

/// Numbers with their units.
std::string channelsText(int channels);
std::string bitRateText(int bitrate, bool estimated);

} // namespace vornak::tool

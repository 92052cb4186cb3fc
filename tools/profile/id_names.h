// Ids and bits by the registry's names, and numbers with their units, for people.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

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

/// The names of a list, which bars separate, without empty ones.
std::vector<std::string> splitAtBars(std::string_view list);

/// Numbers with their units.
std::string channelsText(int channels);
std::string bitRateText(int bitrate, bool estimated);

} // namespace vornak::tool

// What people call codecs, containers and the oddities of a video.
#pragma once

#include <string>

namespace vornak::tool {

/// "H.264"; the registry's name where people have no other.
std::string spokenCodec(int id);

/// "MP4", "any other container"; a subtype by its own name where it has one.
std::string spokenContainer(int id);

/// "Main 10" for a profile that the registry calls main10.
std::string spokenProfile(const std::string &name);

/// "of variable frame rate" for vfr.
std::string spokenException(const std::string &name);

} // namespace vornak::tool

// From libavformat's containers to the registry's.
#pragma once

#include <string>

namespace vornak::tool {

class MediaFile;

struct ContainerIdentity {
    int formatId = 0; ///< kUnknownId: not in the registry
    std::string name; ///< "mp4/isom"; "image", or libavformat's for what the registry doesn't know
};

ContainerIdentity identifyContainer(const MediaFile &file);

/// Whether the container holds pictures, moving ones (GIF) included, that players show as such.
bool isPictureContainer(const MediaFile &file);

} // namespace vornak::tool

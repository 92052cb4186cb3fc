// From libavformat's containers to the registry's.
#pragma once

#include <cstdint>
#include <span>
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

/// The document type in the header that a Matroska file begins with ("matroska", "webm"), or the
/// empty text.
std::string ebmlDocType(std::span<const std::uint8_t> start);

} // namespace vornak::tool

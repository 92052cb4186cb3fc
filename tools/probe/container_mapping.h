// From libavformat's containers to the registry's.
#pragma once

#include <cstdint>
#include <span>
#include <string>

struct AVFormatContext;

namespace vornak::tool {

class MediaFile;

struct ContainerIdentity {
    int formatId = 0; ///< kUnknownId: not in the registry
    std::string name; ///< "mp4/isom"; libavformat's for what the registry doesn't know
};

ContainerIdentity identifyContainer(const MediaFile &file);

/// How many pictures a file must hold to be no still image: 0 in containers for films.
int fewestPicturesOfFilm(const AVFormatContext &context);

/// Whether the file is a photo in MP4's boxes, as its first bytes say. Not every libavformat can
/// open one.
bool hasPhotoBrand(const MediaFile &file);

/// The document type in the header that a Matroska file begins with ("matroska", "webm"), or the
/// empty text.
std::string ebmlDocType(std::span<const std::uint8_t> start);

} // namespace vornak::tool

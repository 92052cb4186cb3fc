// What containers are called elsewhere: by those who read and write them, and in file names.
#pragma once

#include <optional>
#include <string_view>

namespace vornak::tool {

/// The container that one of libavformat's demuxers reads, without a subtype; nothing where the
/// registry has none. Of some, only a look into the file tells which form it is.
std::optional<int> containerReadBy(std::string_view demuxer);

/// The container that an ffmpeg-style muxer writes, without a subtype.
std::optional<int> containerWrittenBy(std::string_view muxer);

/// Whether a muxer's files are of this subtype.
bool writesSubtype(std::string_view muxer, int formatId);

/// The usual extension, without its point; "out" for an id that the registry doesn't know.
std::string_view extensionOf(int formatId);

} // namespace vornak::tool

// What is known of containers: what they are called by those who read and write them, in file names
// and announcements, how ffmpeg makes them, and what they hold.
#pragma once

#include <optional>
#include <string>
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

/// The option by which a stock ffmpeg makes the container; empty: it can't.
/// @param sound    the codec of the sound in it
/// @param isMusic  keeps a cover picture from becoming a video
std::string containerOption(int formatId, int sound, bool isMusic);

/// Whether files in the container are usual that hold streams of the codec.
bool canHold(int formatId, int codec);

/// The MIME type of files in the container.
std::string mimeOf(int formatId, bool isMusic);

/// Which of two containers is better to make: less is better.
int rankOf(int formatId, bool isMusic);

} // namespace vornak::tool

// The bit rates that a file states, apart from what libavformat makes of its first packets.
#pragma once

#include <cstdint>

struct AVFormatContext;
struct AVStream;

namespace vornak::tool {

class MediaFile;

/// In bits per second: by the header, by a count among the tags, or by a codec whose frames are
/// all alike; 0: none.
std::int64_t statedBitrate(const MediaFile &file, const AVStream &stream);

/// Whether libavformat has made the file's duration from the bit rates of the first packets.
bool guessesDuration(const AVFormatContext &context);

} // namespace vornak::tool

// Where the streams of a media file end, as its packets and its index have it.
#pragma once

#include <optional>
#include <string>

namespace vornak::tool {

/// Seconds, as the container counts them; 0: unknown.
struct StreamEnds {
    double start = 0;  ///< of the stream that begins first
    double stated = 0; ///< how long the file is by its headers
    double video = 0, audio = 0;
    bool isRead = false;    ///< all that had to be read for them
    bool hasTimes = false;  ///< the container says when a packet is played; else they are counted
    bool hasBreaks = false; ///< the container's times may start anew anywhere
};

/// Of the first video that is no cover picture, and of one audio track. Reads the end of the file,
/// or all of it where it can't be sought in. None: no media file.
/// @param audioTrack  position among the audio tracks; -1: none
std::optional<StreamEnds> findStreamEnds(const std::string &path, int audioTrack);

} // namespace vornak::tool

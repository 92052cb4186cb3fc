// What the probe finds in a media file, in the terms of the registry and the rules.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vornak::tool {

/// The id of a codec or container that the registry doesn't know: no rule but a wildcard has it.
constexpr int kUnknownId = -2;

struct AudioTrack {
    int number = 0; ///< counts the file's audio tracks from 1
    int codecId = kUnknownId;
    int profile = 0; ///< one registry bit, or 0
    int level = 0;
    int channels = 0;
    int bitrate = 0;               ///< bits per second, never 0
    bool bitrateEstimated = false; ///< the file states none
    int sampleRate = 0;            ///< Hz
    bool isDefault = false;
    std::string codecName;   ///< the registry's name, or libavcodec's for what it doesn't know
    std::string profileName; ///< empty: none
    std::string language;    ///< as the file tags it; may be empty
};

struct VideoStream {
    int codecId = kUnknownId;
    int profile = 0; ///< one registry bit, or 0
    int level = 0;   ///< as the stream codes it (H.264 41, HEVC 93)
    int width = 0;   ///< coded pixels, before any turn or aspect ratio
    int height = 0;
    int bitrate = 0;               ///< bits per second, never 0
    bool bitrateEstimated = false; ///< the file states none
    int playExceptions = 0;        ///< registry bits of what players stumble over
    std::string codecName;
    std::string profileName;
    std::vector<std::string> playExceptionNames; ///< the same bits by name, in bit order
};

struct MediaInfo {
    int formatId = kUnknownId; ///< container, with the subtype in the high 16 bits
    std::string containerName; ///< "mp4", or "mp4/isom" with a subtype
    std::string demuxer;       ///< what ffmpeg calls the reader of such files: "mov"
    double duration = 0;       ///< seconds; 0: unknown
    std::optional<VideoStream> video;
    std::vector<AudioTrack> audio; ///< in the file's order
    bool stillImage = false;       ///< a picture, not a video
};

} // namespace vornak::tool

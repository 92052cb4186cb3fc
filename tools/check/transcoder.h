// What the transcoder knows by name, asked of the libavcodec and libavformat of this machine, which
// stand for its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// Which ones were asked: "libavcodec 59.37.100".
std::string askedCodecs();
std::string askedFormats();

/// The registry's id of what an encoder makes ("libx264", "h264_vaapi"), also of some that this
/// machine hasn't; nothing when unknown.
std::optional<int> encodedCodec(std::string_view encoder);

/// The encoder that makes the registry's codec where none is named; empty: there is none.
std::string usualEncoder(int codecId);

std::vector<std::string> encoderNames(bool isVideo);

bool isMuxer(std::string_view name);
const std::vector<std::string> &muxerNames();

/// Whether the muxer takes no stream in a codec of the registry.
bool refusesCodec(std::string_view muxer, int codecId);

/// The muxer for which a name stands elsewhere, such as in file names: "matroska" for "mkv".
std::optional<std::string> muxerCalled(const std::string &name);

enum class OptionForm { Unknown, Flag, Value };

/// What an option of ffmpeg or of the two libraries takes. @param name  without "-" and ":v"
OptionForm formOfOption(const std::string &name);

std::vector<std::string> optionNames();

struct Pixels {
    int depth;  ///< bits
    int chroma; ///< 420, 422 or 444
};

/// A pixel format of libavutil; nothing for one that isn't known, or lies in hardware.
std::optional<Pixels> pixelsCalled(const std::string &name);

} // namespace vornak::tool

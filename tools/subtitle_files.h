// The subtitle files that lie beside a video.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

struct SubtitleFile {
    std::string name;      ///< in the video's folder, as it is
    std::string_view kind; ///< "srt" or "vtt"
    std::string language;  ///< as the name tags it; empty: not at all
};

/// The files that the library finds, nine at most, in the byte order of their names; none for a
/// folder that can't be read. The library names its candidates on standard output meanwhile.
std::vector<SubtitleFile> findSubtitleFiles(const std::string &videoPath);

} // namespace vornak::tool

// What was found when subtitle files were looked for beside a video.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

struct SubtitleFile {
    std::string name;      ///< in the video's folder, as it is
    std::string_view kind; ///< "srt" or "vtt"
    std::string language;  ///< as the name tags it; empty: not at all

    bool operator==(const SubtitleFile &) const = default;
};

struct SubtitleSearch {
    std::string errorCode, error; ///< why the folder can't be searched; empty: it was
    std::vector<SubtitleFile> files;
    bool full = false;                   ///< the library's list ends here, there may be more
    std::optional<std::string> plainSrt; ///< name of the SRT file that has the video's name
};

} // namespace vornak::tool

// The subtitle files that lie beside a video.
#pragma once

#include "tools/probe/subtitle_search.h"

namespace vornak::tool {

/// The files that the library finds, nine at most, in the byte order of their names. They are told
/// by the library's own matcher from names that are read once a folder: the exported functions
/// read it for each video. Any thread.
SubtitleSearch searchSubtitles(const std::string &videoPath);

} // namespace vornak::tool

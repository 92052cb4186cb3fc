// What a media file holds, and what lies beside it, as JSON has it, and read back.
#pragma once

#include "tools/probe/media_info.h"
#include "tools/probe/subtitle_search.h"
#include "tools/terminal/json_fields.h"

namespace vornak::tool {

/// @param playExceptions  to name, perhaps more than are found in the file
Json jsonOf(const VideoStream &video, int playExceptions);
Json jsonOf(const AudioTrack &track);

/// The files that were found, and why there may be more: null, or a code and a message.
Json jsonOf(const SubtitleSearch &search);
Json errorOf(const SubtitleSearch &search);

/// All of it, so that mediaOf() gives the same again.
Json jsonOf(const MediaInfo &media);

/// Throws std::runtime_error with the field's place where no media is like this.
MediaInfo mediaOf(const JsonFields &fields);

} // namespace vornak::tool

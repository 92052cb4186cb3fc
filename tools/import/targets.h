// What a transcoder is told so that it makes what given limits take: options of a stock ffmpeg.
#pragma once

#include "tools/import/player.h"

#include <string>
#include <vector>

namespace vornak::tool {

/// How a picture, or sound, is made. Empty: ffmpeg makes nothing that the limits take.
std::string targetOption(const Limits &limits);

/// Codecs that ffmpeg makes, the preferred first.
std::vector<int> makeableCodecs(bool ofPictures);

/// Whether small pictures are not taken.
bool isLimitedBelow(const Limits &limits);

/// How large a picture is that is made, in pixels.
int targetArea(const Limits &limits);

/// Limits for a rule that is transcoded to: as these, but where only one of the two greatest sizes
/// is limited, the other as well. The limits are handed to the transcoder as a pair.
Limits withWholeSize(const Limits &limits);

} // namespace vornak::tool

// What a transcoder is told so that it makes what given limits take: options of a stock ffmpeg.
#pragma once

#include "tools/import/player.h"

#include <string>
#include <vector>

namespace vornak::tool {

/// Empty: ffmpeg makes nothing that the limits take.
std::string pictureOption(const PictureLimits &limits);
std::string soundOption(const SoundLimits &limits);

/// Codecs that ffmpeg makes, the preferred first.
std::vector<int> makeablePictures();
std::vector<int> makeableSounds();

/// Whether small pictures are not taken.
bool isLimitedBelow(const PictureLimits &limits);

/// How large a picture is that is made, in pixels.
int targetArea(const PictureLimits &limits);

/// Limits for a rule that is transcoded to: as these, but where only one of the two greatest sizes
/// is limited, the other as well. The limits are handed to the transcoder as a pair.
PictureLimits withWholeSize(const PictureLimits &limits);

} // namespace vornak::tool

// DLNA names of profiles for music whose limits lie within theirs. A video's name says too much
// (frame rates, shapes of pixels) that no rule limits, so none is certain.
#pragma once

#include "tools/import/player.h"

#include <string>

namespace vornak::tool {

/// Empty: no name is certain.
std::string dlnaNameOfMusic(const SoundLimits &limits, int format);

} // namespace vornak::tool

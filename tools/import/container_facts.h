// What is known of containers beside what players say: how ffmpeg makes them, what they hold, and
// as what files in them are announced.
#pragma once

#include "tools/import/player.h"

#include <string>
#include <string_view>

namespace vornak::tool {

/// The option by which a stock ffmpeg makes the container; empty: it can't.
/// @param sound    the codec of the sound in it
/// @param isMusic  keeps a cover picture from becoming a video
std::string containerOption(int format, int sound, bool isMusic);

/// Whether files in the container are usual that hold streams of the codec.
bool canHold(int format, int codec);

/// The MIME type of files in the container.
std::string mimeOf(int format, bool isMusic);

/// Which of two containers is better to make: less is better.
int rankOf(int format, bool isMusic);

/// Empty: no name is certain.
std::string dlnaNameOfMusic(const Limits &limits, int format);

} // namespace vornak::tool

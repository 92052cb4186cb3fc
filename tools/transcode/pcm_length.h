// The size of music that becomes linear PCM: as the library estimates it, and as it is.
#pragma once

#include "tools/decide/decide_files.h"

#include <string>

namespace vornak::tool {

/// Prints the estimate, or says why there is none. Returns the tool's exit status.
int showLength(const DecidedFile &file);

/// The same, then transcodes the file and compares. @param ffmpeg  the program
int verifyLength(const DecidedFile &file, const std::string &ffmpeg);

} // namespace vornak::tool

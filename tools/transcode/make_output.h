// An output in the making: ffmpeg at work, and what is said when it fails.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/transcode/library_command.h"

#include <string>

namespace vornak::tool {

/**
 * Runs ffmpeg with the command's options, showing how far it has come; complains of a failure with
 * ffmpeg's last lines.
 * @param output  a file that isn't there yet
 * @return 0, the tool's exit status after a failure, or 128 and the signal that interrupted it
 */
int makeOutput(const std::string &ffmpeg, const DecidedFile &file, const LibraryCommand &command,
               const std::string &output);

/// The same for a file that is only copied.
int copyOutput(const std::string &media, const std::string &output);

} // namespace vornak::tool

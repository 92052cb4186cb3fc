// Runs ffmpeg and watches it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

class FfmpegProgress;

/// What came of a run.
struct FfmpegEnd {
    int status = 0;                     ///< exit status, or 128 and the signal that ended it
    int interruption = 0;               ///< the signal that the tool was sent meanwhile; 0: none
    std::vector<std::string> lastLines; ///< of its standard error, printable
};

/**
 * Runs `command` (the program first, looked up in PATH) to its end, with nothing on its standard
 * input. Its standard output is to be that of ffmpeg's -progress. A signal that would end the tool
 * ends the program in its stead, at once where it comes a second time. Throws a line for the user
 * where the program can't be started.
 */
FfmpegEnd runFfmpeg(const std::vector<std::string> &command, FfmpegProgress &progress);

} // namespace vornak::tool

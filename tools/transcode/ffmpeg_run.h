// Runs ffmpeg and watches it.
#pragma once

#include "tools/terminal/child.h"

#include <string>
#include <vector>

namespace vornak::tool {

class FfmpegReport;
class HeldSignals;

/// A program, and what it is handed beside its messages: nothing to read.
struct FfmpegRun {
    static constexpr const char *kProgressUrl = "pipe:3"; ///< for -progress
    static constexpr const char *kFolder = "/proc/self/fd/4";

    std::vector<std::string> command; ///< the program first, looked up in PATH
    int standardOutput = kNothing;    ///< the tool's descriptor
    int folder = kNothing;            ///< becomes kFolder
};

/// What came of a run.
struct FfmpegEnd {
    int status = 0;       ///< exit status, or kSignalled and the signal that ended it
    int signal = 0;       ///< that ended it; 0: none
    int interruption = 0; ///< the signal that the tool was sent meanwhile; 0: none
};

/**
 * Runs a program to its end; one that outlives the tool is killed. A signal that would end the tool
 * ends the program in its stead, at once where it comes a second time. Throws a line for the user
 * where the program can't be started.
 */
FfmpegEnd runFfmpeg(const FfmpegRun &run, const HeldSignals &signals, FfmpegReport &report);

} // namespace vornak::tool

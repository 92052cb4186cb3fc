// Whether an output that ffmpeg calls done is whole.
#pragma once

#include <optional>
#include <string>

namespace vornak::tool {

class FfmpegReport;
struct Making;

struct Fault {
    bool isSources = false; ///< the source ends early; else the output isn't as ffmpeg meant it
    std::string text;       ///< a sentence's rest, after the name of the one or the other
};

/// The first thing that the output lacks; none: it is whole, as far as can be told. What is on
/// standard output is not looked at again.
std::optional<Fault> findFault(const Making &making, const FfmpegReport &report);

} // namespace vornak::tool

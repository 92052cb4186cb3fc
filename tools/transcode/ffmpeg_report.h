// How far ffmpeg has come, from what it reports on itself.
#pragma once

#include "tools/terminal/progress.h"

#include <string>
#include <string_view>

namespace vornak::tool {

class FfmpegProgress {
public:
    /// @param duration  seconds that the output will last; 0: unknown
    explicit FfmpegProgress(double duration) : duration_(duration) {}

    /// Takes a line of the form "key=value", as ffmpeg's -progress writes them; draws at the end
    /// of each report.
    void takeLine(std::string_view line);

    void hide() { line_.hide(); }

    /// What is drawn beside the bar: "42%  3.2x  0:12 left".
    std::string text() const;
    double fraction() const; ///< 0 to 1, below 0: unknown

private:
    double duration_;
    double done_ = 0;  ///< seconds
    double speed_ = 0; ///< seconds a second; 0: unknown
    ProgressLine line_;
};

} // namespace vornak::tool

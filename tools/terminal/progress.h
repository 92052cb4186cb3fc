// How many of the files are done, in one line on a terminal's standard error; nowhere else.
#pragma once

#include "tools/terminal/progress_line.h"

#include <chrono>
#include <cstddef>

namespace vornak::tool {

class Progress {
public:
    /// Whether there is a terminal to show anything on.
    static bool isShown() { return ProgressLine::isShown(); }

    /// @param total  files to come; 0: unknown
    explicit Progress(std::size_t total) : total_(total) {}

    /// One file more is done. Draws a few times a second at most, and nothing for short work.
    void advance();

    /// Clears the line, for what else the terminal is to show.
    void hide() { line_.hide(); }

private:
    std::size_t total_;
    std::size_t done_ = 0;
    ProgressLine line_;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

} // namespace vornak::tool

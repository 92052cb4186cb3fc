// How far some work has come, in one line on a terminal's standard error; nowhere else.
#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vornak::tool {

/// Clears the line when it goes. Whatever else is written to the terminal takes the line's place.
class ProgressLine {
public:
    /// Whether there is a terminal to show anything on.
    static bool isShown();

    ProgressLine() = default;
    ~ProgressLine() { hide(); }
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    /// Draws a bar and a text. @param fraction  0 to 1; below 0: unknown, no bar
    void draw(double fraction, std::string_view text);

    void hide();
};

/// How many of the files are done.
class FileProgress {
public:
    /// @param total  files to come; 0: unknown
    explicit FileProgress(std::size_t total) : total_(total) {}

    /// One file more is done. Draws a few times a second at most, and nothing for short work.
    void advance();

private:
    std::size_t total_;
    std::size_t done_ = 0;
    ProgressLine line_;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

} // namespace vornak::tool

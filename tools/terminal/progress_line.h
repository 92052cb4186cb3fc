// One line on a terminal's standard error that says how far some work has come.
#pragma once

#include <string_view>

namespace vornak::tool {

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

    /// Clears the line, for what else the terminal is to show.
    void hide();

private:
    bool drawn_ = false;
};

} // namespace vornak::tool

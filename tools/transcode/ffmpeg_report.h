// What ffmpeg says of itself while it works: how far it has come, and what goes wrong.
#pragma once

#include "tools/terminal/progress.h"

#include <cstddef>
#include <deque>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace vornak::tool {

class FfmpegReport {
public:
    /// @param duration  seconds that the output will last; 0: unknown
    /// @param url       how ffmpeg calls the output
    /// @param output    how the user does
    FfmpegReport(double duration, std::string url, std::string output)
        : duration_(duration), url_(std::move(url)), output_(std::move(output))
    {}

    /// Takes a line of the form "key=value", as ffmpeg's -progress writes them; draws at the end
    /// of each report.
    void takeProgress(std::string_view line);

    /// Takes a line of its standard error.
    void takeMessage(const std::string &line);

    void hide() { line_.hide(); }

    /// What is drawn beside the bar: "42%  3.2x  0:12 left".
    std::string text() const;
    double fraction() const;                 ///< 0 to 1, below 0: unknown
    double seconds() const { return done_; } ///< of the output that ffmpeg has written

    /// The last messages, printable.
    const std::deque<std::string> &messages() const { return messages_; }

    bool couldNotWrite() const { return couldNotWrite_; } ///< something of the output
    bool sourceEnded() const { return sourceEnded_; }     ///< before its end
    std::size_t damagedPlaces() const { return damagedPlaces_; }

private:
    void countDamage(const std::string &line);

    double duration_;
    std::string url_, output_;
    double done_ = 0;  ///< seconds
    double speed_ = 0; ///< seconds a second; 0: unknown
    ProgressLine line_;
    std::deque<std::string> messages_;
    bool couldNotWrite_ = false, sourceEnded_ = false;
    std::set<std::string> place_; ///< what was said of the last damaged place
    std::size_t damagedPlaces_ = 0;
};

} // namespace vornak::tool

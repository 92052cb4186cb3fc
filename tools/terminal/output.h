// Standard output and standard error of the tool.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace vornak::tool {

/// Writes `text` to standard output. A terminal that has gone is no error; a reader that has ends
/// the tool quietly, and what else goes wrong ends it with a line on standard error.
void writeOut(std::string_view text);

/// How many characters a line of standard output has room for; 0: it is no terminal.
std::size_t outputWidth();

/// The descriptor of standard output, for who has to hand it on.
int standardOutput();

/// Writes "vornak: MESSAGE" and a line end to standard error, where a reader or a terminal that has
/// gone is no error. Texts from outside come printable(); a message with a path that is longer than
/// any that the system takes is cut in its middle.
void complain(std::string_view message);

/// "PATH: WHY", with the path printable.
std::string aboutFile(const std::string &path, std::string_view why);

/// Complains so; returns the exit status that goes with it.
int complainOf(const std::string &path, std::string_view why);

/// Draws the terminal's status line on standard error, or clears it if `text` is empty. All that
/// is written to the terminal afterwards takes its place. From one thread at a time.
void setStatusLine(std::string_view text);

/// Held by whoever writes to standard error, and by whoever diverts it while threads are at work.
std::mutex &standardErrorMutex();

/// Opens those of the three standard descriptors that the caller has closed, so that no file
/// takes their place, and lets the tool outlive the readers of the others.
void prepareStandardStreams();

/// From now on standard output is for writeOut() alone: what the library prints there is lost.
/// For what runs after the command line is parsed; call it before the first thread starts.
void claimStandardOutput();

/// Whether standard output is coloured. Before the first call of colours().
enum class ColourUse {
    Auto, ///< a terminal is, unless NO_COLOR is set and not empty
    Always,
    Never,
};
void useColours(ColourUse use);

/// Colours for standard output; every one is the empty text where it is not coloured.
struct Colours {
    std::string_view name, good, change, bad, reset;
};
const Colours &colours();

} // namespace vornak::tool

// A file with what a transcoder is to do about it, as `vornak command` shows it.
#pragma once

#include "tools/transcode/library_command.h"

#include <string>
#include <vector>

namespace vornak::tool {

struct FileCommand {
    std::string path;
    const Decision *decision = nullptr;
    std::optional<LibraryCommand> command; ///< none: nothing to do, refused, or a problem
    std::vector<std::string> ffmpeg;       ///< the words of the line, with the command
    std::string problem;                   ///< why there is no command though one is needed

    /// What is said of a file without a command.
    std::string_view standing() const;
};

FileCommand commandFor(const std::string &path, const Decision &decision, int dialect);

/// Its lines, each with a line end.
std::string textOf(const FileCommand &file);

/// A line for a shell: the ffmpeg line, or a comment.
std::string shellTextOf(const FileCommand &file);

/// An entry of the JSON document's list, without the comma.
std::string jsonOf(const FileCommand &file);

} // namespace vornak::tool

// A file for a player, where the user wants it.
#pragma once

#include "tools/decide/decide_files.h"

#include <string>

namespace vornak::tool {

struct Delivery {
    std::string output; ///< "-": standard output
    std::string ffmpeg = "ffmpeg";
    int dialect = 1;
    bool replace = false;
    bool copy = false;   ///< what needs no transcoding
    bool verify = false; ///< decide about the output, before it is moved to its place
    bool acceptDamaged = false;
};

/// Makes the output, or nothing. Says what came of it and returns the exit status. Throws a line
/// for the user where the output can't go to its place.
int deliver(const DecidedFile &file, const Delivery &wanted);

} // namespace vornak::tool

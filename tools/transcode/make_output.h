// An output in the making: ffmpeg at work, and whether what it made is whole.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/transcode/library_command.h"

#include <string>
#include <string_view>

namespace vornak::tool {

class HeldSignals;
class WorkFile;

struct Making {
    const DecidedFile &file;
    const LibraryCommand *command = nullptr; ///< none: the file is copied
    std::string program;                     ///< ffmpeg
    const WorkFile *work = nullptr;          ///< none: it goes to standard output
    std::string output;                      ///< its name for the user
    bool acceptDamaged = false;              ///< take what a source gives that ends too early
    std::string_view advice = {};            ///< about a source that does so
};

/**
 * Makes the output and shows how far it has come. Says what goes wrong: that the program can't do
 * it, with its last lines; that not all of it could be written; that it or the source ends early.
 * Damage in between is counted and told.
 * @return 0, the tool's exit status after a failure, or 128 and the signal that interrupted it
 */
int makeOutput(const Making &making, const HeldSignals &signals);

/// Says that a signal ended the work, and returns the exit status for that.
int sayInterrupted(const Making &making, int signal);

} // namespace vornak::tool

#include "tools/commands/transcoding_options.h"

#include <CLI/CLI.hpp>

namespace vornak::tool {

void addDialectOption(CLI::App &command, int &dialect)
{
    command
        .add_option("--dialect", dialect,
                    "Option dialect of the limits that a file exceeds (default 1)")
        ->type_name("1|2")
        ->check(CLI::Range(1, 2).description(""));
}

void addFfmpegOption(CLI::App &command, std::string &ffmpeg)
{
    command.add_option("--ffmpeg", ffmpeg, "The ffmpeg to run (default: the one in PATH)")
        ->type_name("PROGRAM");
}

} // namespace vornak::tool

#include "transcoding_options.h"

#include "output.h"
#include "printable.h"
#include "profile_session.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>

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

void complainOfWarnings(const std::string &profile, const ProfileSession &session)
{
    for (const std::string &warning : session.warnings())
        complain(fmt::format("warning: {}: {}", printable(profile), warning));
}

} // namespace vornak::tool

// The options that the subcommands about transcoding share.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vornak::tool {

/// Which dialect the limits are rendered in, 1 or 2.
void addDialectOption(CLI::App &command, int &dialect);

/// The program that transcodes.
void addFfmpegOption(CLI::App &command, std::string &ffmpeg);

} // namespace vornak::tool

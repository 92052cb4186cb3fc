// The options that the subcommands about transcoding share.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vornak::tool {

class ProfileSession;

/// Which dialect the limits are rendered in, 1 or 2.
void addDialectOption(CLI::App &command, int &dialect);

/// The program that transcodes.
void addFfmpegOption(CLI::App &command, std::string &ffmpeg);

/// What the library said about the profile, a line each.
void complainOfWarnings(const std::string &profile, const ProfileSession &session);

} // namespace vornak::tool

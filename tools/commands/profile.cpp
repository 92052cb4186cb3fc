#include "tools/commands/profile.h"

#include "tools/commands/subcommands.h"

#include <CLI/CLI.hpp>

namespace vornak::tool {

void addProfileOptions(CLI::App &command, ProfileOptions &options)
{
    command.add_option("FILE", options.path, "The profile file")->required();
    command.add_flag("--json", options.json, "Print one JSON document");
}

void addProfile(CLI::App &app, int &status)
{
    CLI::App *command = app.add_subcommand("profile", "Show, check or make a Device profile");
    command->require_subcommand(1);
    addProfileShow(*command, status);
    addProfileCheck(*command, status);
    addProfileNew(*command, status);
    addProfileImport(*command, status);
}

} // namespace vornak::tool

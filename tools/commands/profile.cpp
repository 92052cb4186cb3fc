#include "tools/commands/profile.h"

#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/command_line.h"

#include <CLI/CLI.hpp>

namespace vornak::tool {

void addProfileOptions(CLI::App &command, ProfileOptions &options)
{
    command
        .add_option(
            "PROFILE", options.path,
            "The profile: its file, one of the names that vornak profile list shows, or - for "
            "standard input")
        ->required()
        ->type_name("");
    takeProfileNames(command, options.path);
    command.add_flag("--json", options.json, "Print one JSON document");
    addColourOption(command);
}

void addProfile(CLI::App &app, int &status)
{
    CLI::App *command =
        app.add_subcommand("profile", "Show, check, compare, list or make Device profiles");
    command->require_subcommand(1);
    addProfileShow(*command, status);
    addProfileCheck(*command, status);
    addProfileDiff(*command, status);
    addProfileNew(*command, status);
    addProfileImport(*command, status);
    addProfileList(*command, status);
}

} // namespace vornak::tool

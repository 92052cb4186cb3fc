// vornak profile import: a profile from one of another system.
#include "tools/commands/profile.h"
#include "tools/commands/profile_output.h"
#include "tools/import/foreign_profile.h"
#include "tools/import/player.h"
#include "tools/import/profile_text.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <stdexcept>

namespace vornak::tool {
namespace {

constexpr const char *kProfileImportHelp =
    "Make a profile of a Jellyfin device profile, or of DLNA profiles as gupnp-dlna describes them";

constexpr const char *kProfileImportFooter = R"(Examples:
  vornak profile import tv.json -o tv.xml
      Jellyfin's profile; what a Device profile can't say is listed on standard error
  vornak profile import dlna-profiles/ --names AVC_MP4_HP_HD_AAC,MP3 > tv.xml
      the DLNA profiles of that name, from a folder of files that include each other

What can't be said exactly is said more strictly: a file may be transcoded that the player would
have played, and none is sent that it wouldn't play. What a Device profile has no limit for is left
out, and a few things are taken more loosely. All of these are listed, with their lines.

Exit status: 0 written, 2 bad usage, a file that can't be understood, or an output that can't be
written.
)";

struct ImportCommandOptions : ImportOptions {
    ProfileOutput output;
};

void tellRemarks(const Player &player)
{
    for (const Remark &remark : player.remarks) complain(remarkText(remark));
}

/// Where there are none, the remarks say why.
DeviceRules rulesFor(Player &player)
try {
    return makeRules(player);
} catch (const std::runtime_error &) {
    tellRemarks(player);
    throw;
}

int runProfileImport(const ImportCommandOptions &options)
{
    Player player = readForeignProfile(options);
    const DeviceRules rules = rulesFor(player);
    const std::string text =
        profileText(player, rules, "Imported from " + shownFileName(options.file) + ".");
    tellRemarks(player);
    writeProfile(text, options.output);
    return kDone;
}

} // namespace

void addProfileImport(CLI::App &app, int &status)
{
    auto options = std::make_shared<ImportCommandOptions>();
    CLI::App *command = app.add_subcommand("import", kProfileImportHelp);
    command
        ->add_option(
            "FILE", options->file,
            "The foreign profile: a file, a folder of DLNA profiles, or - for standard input")
        ->required();
    command->add_option("--name", options->name, "The player's name")->type_name("NAME");
    addRepeatable(*command, "--names", options->names,
                  "The DLNA profiles that the player takes, the preferred first")
        ->type_name("NAME,...")
        ->delimiter(',');
    command
        ->add_option("--sink-protocol-info", options->sink,
                     "The same, as the player states it: a list of protocolInfo")
        ->type_name("LIST");
    command->add_flag(
        "--relaxed", options->relaxed,
        "Read what the DLNA profiles allow in the relaxed mode, not in the strict one");
    addOutputOptions(*command, options->output);
    command->footer(kProfileImportFooter);
    command->callback([options, &status] { status = runProfileImport(*options); });
}

} // namespace vornak::tool

// vornak profile show: the tables that the library makes of a profile.
#include "tools/commands/profile.h"
#include "tools/profile/profile_session.h"
#include "tools/profile/profile_view.h"
#include "tools/profile/profile_words.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kProfileShowHelp = "Show the rules of a profile as the library loads them";

constexpr const char *kProfileShowFooter = R"(Examples:
  vornak profile show tv.xml
      every rule that was accepted, with its position, its line and its limits
  vornak profile show --words tv.xml
      what the player takes, in prose
  vornak profile show --json tv.xml | jq '.video[0].audio[].codec'

Exit status: 0 shown, 2 bad usage or a profile that can't be loaded.
)";

struct ShowOptions : ProfileOptions {
    bool words = false;
};

int runProfileShow(const ShowOptions &options)
{
    const ProfileSession session(options.path);
    complainOfWarnings(options.path, session);
    writeOut(options.words  ? wordsOf(session)
             : options.json ? jsonOf(options.path, session)
                            : textOf(session));
    return kDone;
}

} // namespace

void addProfileShow(CLI::App &app, int &status)
{
    auto options = std::make_shared<ShowOptions>();
    CLI::App *command = app.add_subcommand("show", kProfileShowHelp);
    addProfileOptions(*command, *options);
    command->add_flag("--words", options->words, "Tell in prose what the player takes")
        ->excludes("--json");
    command->footer(kProfileShowFooter);
    command->callback([options, &status] { status = runProfileShow(*options); });
}

} // namespace vornak::tool

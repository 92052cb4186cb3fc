#include "tools/commands/run_vornak.h"

#include "include/vornak.h"
#include "tools/commands/completion.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <sstream>
#include <string_view>

namespace vornak::tool {
namespace {

// in the order of the help text
constexpr AddSubcommand s_Subcommands[] = {
    addDecide,    addMatrix, addProbe,    addProfile, addCommand,   addTranscode, addLength,
    addSubtitles, addDisc,   addElements, addCached,  addAppliance, addLock,
};

} // namespace

int runVornak(int argc, char **argv)
{
    CLI::App app{"Says what a DLNA player takes of a media file as it is, what must be "
                 "transcoded, and why"};
    app.name("vornak");
    useShortHelp(app);
    app.set_version_flag("--version", "vornak " VORNAK_VERSION);
    app.require_subcommand(1);
    int status = kDone;
    for (const AddSubcommand add : s_Subcommands) add(app, status);
    app.footer("vornak COMMAND --help shows each with examples. Text on a terminal is coloured, "
               "unless\nNO_COLOR is set and not empty, or --color says otherwise.\n\n"
               "Exit status: 0 done, 1 some file could not be worked on (or a check found "
               "something), 2 bad\nusage or a profile that can't be loaded.\n");
    if (argc > 1 && std::string_view(argv[1]) == "--complete") { // what completions/ ask
        writeOut(completionsOf(app, {argv + 2, argv + argc}));
        return kDone;
    }
    try {
        parseCommandLine(app, argc, argv);
    } catch (const CLI::Success &request) {
        std::ostringstream text, none;
        app.exit(request, text, none); // help or version
        writeOut(text.str());
        return kDone;
    } catch (const CLI::ParseError &error) {
        complain(describeUsageError(app, error));
        return kUnusable;
    }
    return status;
}

} // namespace vornak::tool

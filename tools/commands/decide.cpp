#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/decide/decision_json.h"
#include "tools/decide/decision_text.h"
#include "tools/decide/surroundings.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr const char *kDecideHelp =
    R"(Says for each media file what a player takes of it as it is, what must be transcoded, and why.)";

constexpr const char *kDecideExamples = R"(Examples:
  vornak decide -p tv.xml film.mkv
      what the TV takes of the film, what is transcoded, and the rule that says so
  vornak decide -p tv.xml --explain film.mkv
      every rule that was visited, and what else would have refused the film
  vornak decide -p tv.xml --prefer mp4 --audio-track 2 film.mkv
      the same for the second audio track, into MP4 where the profile lists it
  vornak decide -p phone.xml --json /media/films > films.json
      all that lies below a folder, as a JSON document
  find . -name '*.ts' -print0 | vornak decide -p tv.xml --null -
      the names on standard input; without --null one a line

Exit status: 0 all files are decided (a refusal is a decision), 1 some are not, 2 bad usage or a
profile that can't be loaded.)";

struct DecideOptions : DecisionOptions {
    bool explain = false;
    bool json = false;
};

void writeHead(const DecideOptions &options, const DecisionRequest &request,
               const ProfileSession &session)
{
    complainOfWarnings(options.profile, session);
    if (options.json) writeOut(jsonHead("vornak-decide", options.profile, request, session));
}

/// Which agent is installed. The shell that runs the query tool may have something to say.
int askForHardware()
{
    const DivertedOutput lost(STDERR_FILENO);
    return isVATranscodeExist();
}

int runDecide(const DecideOptions &options)
{
    claimStandardOutput();
    const DecisionRequest request = resolve(options);
    const ProfileSession session(options.profile);
    const int hardwareAgent = askForHardware();
    writeHead(options, request, session);

    const auto render = [&](const std::string &path, const FileResult &result) -> std::string {
        const auto *decision = std::get_if<Decision>(&result);
        if (!decision)
            return options.json ? jsonOf(path, std::get<Undecided>(result)) : std::string{};
        const Explanation explanation = explain(*decision, request);
        const Surroundings around = lookAround(path, *decision, hardwareAgent);
        if (options.json)
            return jsonOf(path, *decision, explanation, around, session, options.explain);
        return textOf(path, *decision, explanation, session) +
               textOf(around, *decision, explanation, session) +
               (options.explain ? visitsText(*decision, explanation, session) : "");
    };
    const Totals totals =
        decideFiles(session, request, options.media, options.json ? ",\n" : "\n", render);

    const bool anyText = totals.undecided < totals.files;
    writeOut(options.json ? jsonTail(totals) : (anyText ? "\n" : "") + textOf(totals));
    return totals.undecided > 0 ? kIncomplete : kDone;
}

} // namespace

void addDecide(CLI::App &app, int &status)
{
    auto options = std::make_shared<DecideOptions>();
    CLI::App *command = app.add_subcommand("decide", kDecideHelp);
    addDecisionOptions(*command, *options);
    command->add_flag("--explain", options->explain,
                      "List every rule visited and all that refuses the file there");
    command->add_flag("--json", options->json, "Print a JSON document");
    addColourOption(*command);
    command->footer(kDecideExamples);
    command->callback([options, &status] { status = runDecide(*options); });
}

} // namespace vornak::tool

// vornak command: what a transcoder is to do about each file, in the library's words and in those
// of a stock ffmpeg.
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/commands/transcoding_options.h"
#include "tools/decide/decide_files.h"
#include "tools/decide/decision_json.h"
#include "tools/decide/decision_text.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/command_text.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kCommandHelp =
    R"(Prints what a transcoder is to do about each media file, and what is announced of the output.)";

constexpr const char *kCommandExamples = R"(Examples:
  vornak command -p tv.xml film.mkv
      the option texts of the appliance's transcoder, and the line for a stock ffmpeg
  vornak command -p tv.xml --dialect 2 film.mkv
      the limits that the film exceeds, in the second dialect
  vornak command -p tv.xml --shell /media/films > films.sh
      one ffmpeg line for each film that needs transcoding

Exit status: 0 all files are decided (a refusal is a decision), 1 some are not or have no command,
2 bad usage or a profile that can't be loaded.)";

enum class Form { Text, Json, Shell };

struct CommandOptions : DecisionOptions {
    int dialect = 1;
    bool json = false;
    bool shell = false;

    Form form() const { return json ? Form::Json : shell ? Form::Shell : Form::Text; }
};

std::string rendered(const FileCommand &file, Form form)
{
    switch (form) {
    case Form::Json:
        return jsonOf(file);
    case Form::Shell:
        return shellTextOf(file);
    case Form::Text:
        break;
    }
    return textOf(file);
}

std::string_view separatorOf(Form form)
{
    if (form == Form::Json) return ",\n";
    return form == Form::Shell ? "" : "\n";
}

int runCommand(const CommandOptions &options)
{
    const Form form = options.form();
    const DecisionRequest request = resolve(options);
    const ProfileSession session(options.profile);
    complainOfWarnings(options.profile, session);
    if (form == Form::Json) writeOut(jsonHead("vornak-command", options.profile, request, session));

    std::atomic<std::size_t> problems = 0;
    const auto render = [&](const SeenFile &seen, const FileResult &result) -> FileText {
        if (const auto *undecided = std::get_if<Undecided>(&result))
            return {form == Form::Json ? jsonOf(seen.path, *undecided) : std::string()};
        const FileCommand file = commandFor(seen.path, std::get<Decision>(result), options.dialect);
        if (!file.problem.empty()) ++problems;
        return {rendered(file, form)};
    };
    const Totals totals = decideFiles(session, request, options.media, separatorOf(form), render);

    if (form == Form::Json) writeOut(jsonTail(totals, false));
    if (form == Form::Text) writeOut((totals.shown > 0 ? "\n" : "") + textOf(totals));
    return totals.undecided + problems > 0 ? kIncomplete : kDone;
}

} // namespace

void addCommand(CLI::App &app, int &status)
{
    auto options = std::make_shared<CommandOptions>();
    CLI::App *command = app.add_subcommand("command", kCommandHelp);
    addDecisionOptions(*command, *options);
    addDialectOption(*command, options->dialect);
    auto *json = command->add_flag("--json", options->json, "Print a JSON document");
    command
        ->add_flag("--shell", options->shell,
                   "Print one ffmpeg line per file for a shell, and a comment for what needs none")
        ->excludes(json);
    command->footer(kCommandExamples);
    command->callback([options, &status] { status = runCommand(*options); });
}

} // namespace vornak::tool

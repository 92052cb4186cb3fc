#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/decide/decision_json.h"
#include "tools/decide/decision_text.h"
#include "tools/decide/surroundings.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/nearest_name.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
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
  vornak decide -p tv.xml --brief --only video,audio /media/films
      a line for each film whose picture or sound is transcoded, and how many share a reason
  vornak decide -p phone.xml --json /media/films > films.json
      all that lies below a folder, as a JSON document
  find . -name '*.ts' -print0 | vornak decide -p tv.xml --null -
      the names on standard input; without --null one a line

Exit status: 0 all files are decided (a refusal is a decision), 1 some are not, 2 bad usage or a
profile that can't be loaded.)";

struct DecideOptions : DecisionOptions {
    bool explain = false;
    bool brief = false;
    bool json = false;
    std::vector<std::string> only; ///< names of the outcomes to show; empty: all
};

/// The outcomes to show. Throws std::runtime_error with a line for the user.
std::set<Outcome> outcomesOf(const DecideOptions &options)
{
    std::map<std::string, Outcome> all;
    std::vector<std::string> names;
    for (int i = 0; i < kOutcomes; ++i) {
        names.emplace_back(nameOf(static_cast<Outcome>(i)));
        all[names.back()] = static_cast<Outcome>(i);
    }
    std::set<Outcome> chosen;
    for (const std::string &name : options.only.empty() ? names : options.only) {
        const auto found = all.find(name);
        if (found == all.end())
            throw std::runtime_error(fmt::format("--only {}: there is no outcome of that name{}",
                                                 printable(name), nearestOrAll(name, names)));
        chosen.insert(found->second);
    }
    return chosen;
}

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

std::string_view separatorOf(const DecideOptions &options)
{
    if (options.json) return ",\n";
    return options.brief ? "" : "\n";
}

int runDecide(const DecideOptions &options)
{
    claimStandardOutput();
    const DecisionRequest request = resolve(options);
    const std::set<Outcome> shown = outcomesOf(options);
    const ProfileSession session(options.profile);
    const int hardwareAgent = options.json || options.explain ? askForHardware() : 0;
    writeHead(options, request, session);

    const auto textFor = [&](const std::string &path, const Decision &decision,
                             const Explanation &explanation) {
        const Surroundings around = lookAround(path, decision, hardwareAgent);
        if (options.json)
            return jsonOf(path, decision, explanation, around, session, options.explain);
        std::string text =
            textOf(path, decision, explanation, session) + subtitlesLine(around, decision);
        if (options.explain)
            text += equipmentLines(around, decision, explanation, session) +
                    visitsText(decision, explanation, session);
        return text;
    };
    const auto render = [&](const std::string &path, const FileResult &result) -> FileText {
        if (const auto *undecided = std::get_if<Undecided>(&result)) {
            const bool isEntry = options.json && shown.contains(undecided->outcome);
            return {isEntry ? jsonOf(path, *undecided) : std::string(), mainReason(*undecided)};
        }
        const auto &decision = std::get<Decision>(result);
        const Explanation explanation = explain(decision, request);
        FileText file{{}, mainReason(decision, explanation, session)};
        if (shown.contains(decision.outcome))
            file.text =
                options.brief ? briefText(path, file.reason) : textFor(path, decision, explanation);
        return file;
    };
    const Totals totals =
        decideFiles(session, request, options.media, separatorOf(options), render);

    writeOut(options.json
                 ? jsonTail(totals, true)
                 : (totals.shown > 0 ? "\n" : "") + textOf(totals) + countedReasons(totals));
    return totals.undecided > 0 ? kIncomplete : kDone;
}

} // namespace

void addDecide(CLI::App &app, int &status)
{
    auto options = std::make_shared<DecideOptions>();
    CLI::App *command = app.add_subcommand("decide", kDecideHelp);
    addDecisionOptions(*command, *options);
    auto *explain = command->add_flag(
        "--explain", options->explain,
        "Add the hardware transcoder, the elements, and every rule visited with all that refuses "
        "the file there");
    auto *json = command->add_flag("--json", options->json, "Print a JSON document");
    command->add_flag("--brief", options->brief, "One line a file: its outcome and the one reason")
        ->excludes(explain)
        ->excludes(json);
    command
        ->add_option("--only", options->only,
                     "Show files of these outcomes alone: kept, remuxed, audio, video, refused, "
                     "unreadable; all are counted")
        ->type_name("OUTCOME,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    addColourOption(*command);
    command->footer(kDecideExamples);
    command->callback([options, &status] { status = runDecide(*options); });
}

} // namespace vornak::tool

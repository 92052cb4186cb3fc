#include "tools/commands/decision_options.h"
#include "tools/commands/expecting.h"
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

#include <algorithm>
#include <fmt/format.h>
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
  vornak decide -p tv.xml --save-expectation tv.txt /media/films
      the decisions with their reasons, a line each; --expect tv.txt says later what changed
  find . -name '*.ts' -print0 | vornak decide -p tv.xml --null -
      the names on standard input; without --null one a line

Exit status: 0 all files are decided (a refusal is a decision), 1 some are not, or not as expected,
2 bad usage or a profile that can't be loaded.)";

struct DecideOptions : DecisionOptions {
    bool explain = false;
    bool brief = false;
    bool json = false;
    ExpectingOptions expecting;
    std::vector<std::string> only; ///< names of the outcomes to show; empty: all
};

std::vector<std::string> outcomeNames()
{
    std::vector<std::string> names;
    names.reserve(kOutcomes);
    for (int i = 0; i < kOutcomes; ++i) names.emplace_back(nameOf(static_cast<Outcome>(i)));
    return names;
}

/// The outcomes to show. Throws std::runtime_error with a line for the user.
std::set<Outcome> outcomesOf(const DecideOptions &options)
{
    const std::vector<std::string> names = outcomeNames();
    std::set<Outcome> chosen;
    for (const std::string &name : options.only.empty() ? names : options.only) {
        const auto found = std::ranges::find(names, name);
        if (found == names.end())
            throw std::runtime_error(fmt::format("--only {}: there is no outcome of that name{}",
                                                 printable(name), nearestOrAll(name, names)));
        chosen.insert(static_cast<Outcome>(found - names.begin()));
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

/// All that the text of a file depends on beside the file.
struct Asked {
    const DecideOptions &options;
    const DecisionRequest request;
    const std::set<Outcome> shown;
    const ProfileSession &session;
    const int hardwareAgent;
};

std::string fullText(const Asked &asked, const SeenFile &file, const Decision &decision,
                     const Explanation &explanation)
{
    const auto &[options, request, shown, session, hardwareAgent] = asked;
    const Surroundings around = lookAround(file, decision, hardwareAgent);
    if (options.json)
        return jsonOf(file.path, decision, explanation, around, session, options.explain);
    std::string text =
        textOf(file.path, decision, explanation, session) + subtitlesLine(around, decision);
    if (options.explain)
        text += equipmentLines(around, decision, explanation, session) +
                visitsText(decision, explanation, session);
    return text;
}

FileText textFor(const Asked &asked, const SeenFile &file, const Undecided &undecided)
{
    const bool isEntry = asked.options.json && asked.shown.contains(undecided.outcome);
    return {isEntry ? jsonOf(file.path, undecided) : std::string(), mainReason(undecided)};
}

FileText textFor(const Asked &asked, const SeenFile &file, const Decision &decision)
{
    const Explanation explanation = explain(decision, asked.request);
    FileText text{{}, mainReason(decision, explanation, asked.session)};
    if (asked.shown.contains(decision.outcome))
        text.text = asked.options.brief ? briefText(file.path, text.reason)
                                        : fullText(asked, file, decision, explanation);
    return text;
}

std::string sumOf(const DecideOptions &options, const Totals &totals)
{
    if (options.json) return jsonTail(totals, true);
    return (totals.shown > 0 ? "\n" : "") + textOf(totals) + countedReasons(totals);
}

int runExpecting(const DecideOptions &options, const DecisionRequest &request)
{
    const std::vector<MatrixColumn> player = loadColumns({options.profile});
    if (lacksPlayer(player)) return kUnusable; // which has been said
    return runExpecting(options.expecting, player, request, options.media);
}

int runDecide(const DecideOptions &options)
{
    claimStandardOutput();
    const DecisionRequest request = resolve(options);
    const std::set<Outcome> shown = outcomesOf(options);
    if (options.expecting.isAsked()) return runExpecting(options, request);
    const ProfileSession session(options.profile);
    const int hardwareAgent = options.json || options.explain ? askForHardware() : 0;
    writeHead(options, request, session);

    const Asked asked{options, request, shown, session, hardwareAgent};
    const Totals totals = decideFiles(
        session, request, options.media,
        options.json    ? ",\n"
        : options.brief ? ""
                        : "\n",
        [&](const SeenFile &file, const FileResult &result) {
            return std::visit([&](const auto &one) { return textFor(asked, file, one); }, result);
        });
    writeOut(sumOf(options, totals));
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
    auto *brief =
        command
            ->add_flag(
                "--brief", options->brief,
                "One line a file: its outcome and the one reason; without --explain and --json")
            ->excludes(explain)
            ->excludes(json);
    auto *only =
        addRepeatable(
            *command, "--only", options->only,
            "Show the files of this outcome alone, or of several with commas between them; "
            "all are counted")
            ->type_name(fmt::format("{}", fmt::join(outcomeNames(), "|")))
            ->delimiter(',');
    addExpectingOptions(*command, options->expecting, {explain, json, brief, only});
    addColourOption(*command);
    command->footer(kDecideExamples);
    command->callback([options, &status] { status = runDecide(*options); });
}

} // namespace vornak::tool

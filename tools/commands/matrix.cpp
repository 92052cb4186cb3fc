// vornak matrix: what many players take of many files.
#include "tools/collection/matrix.h"
#include "tools/collection/cell_reason.h"
#include "tools/collection/matrix_csv.h"
#include "tools/collection/matrix_json.h"
#include "tools/collection/matrix_page.h"
#include "tools/collection/matrix_table.h"
#include "tools/commands/decision_options.h"
#include "tools/commands/expecting.h"
#include "tools/commands/subcommands.h"
#include "tools/commands/whole_file.h"
#include "tools/files/output_place.h"
#include "tools/profile/profile_search.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kMatrixHelp =
    R"(Says for many players which takes which media file, each file probed once.)";

constexpr const char *kMatrixExamples = R"(Examples:
  vornak matrix -p living-room-tv -p phone /media/films
      a letter for each player and film, and the sums of each player
  vornak matrix --profiles profiles --probed films.jsonl
      all players of a folder, of films that vornak probe -o films.jsonl has looked at
  vornak matrix --profiles profiles --reasons --probed films.jsonl
      which limits of which rules cost the most transcodes
  vornak matrix --profiles profiles --json --probed films.jsonl > matrix.json
      all cells, each with the reasons that decide words
  vornak matrix --profiles profiles --html matrix.html --probed films.jsonl
      the same as a page for a browser
  vornak matrix --profiles profiles --probed films.jsonl --save-expectation films.txt
      all decisions with their reasons, a line each; --expect films.txt says later what changed

Exit status: 0 done, 1 some file can't be decided about by anybody or some profile can't be loaded,
or some decision is not as expected, 2 bad usage.)";

struct MatrixOptions : DecisionOptions {
    std::vector<std::string> profiles;
    std::string folder; ///< of profiles
    bool json = false;
    bool csv = false;
    bool reasons = false;
    std::string page; ///< where it goes; empty: nowhere
    ExpectingOptions expecting;
};

std::vector<std::string> pathsOf(const MatrixOptions &options)
{
    std::vector<std::string> paths;
    for (const std::string &profile : options.profiles) paths.push_back(findProfile(profile));
    if (!options.folder.empty())
        for (std::string &path : profilesIn(options.folder)) paths.push_back(std::move(path));
    if (paths.empty()) throw CLI::RequiredError("--profile or --profiles");
    return paths;
}

struct MatrixRun {
    const std::vector<MatrixColumn> &columns;
    const DecisionRequest request;
    const MediaNames &media;
    const std::string page;
};

MatrixTotals writeTable(const MatrixRun &run)
{
    const MatrixTable table(run.columns, outputWidth());
    writeOut(table.head());
    MatrixTotals totals = decideMatrix(
        run.columns, run.request, run.media,
        [&](const SeenFile &file, const MatrixResults &results) {
            return table.row(file.path, results);
        },
        [](const std::string &row, MatrixTotals &) { writeOut(row); });
    writeOut('\n' + table.sums(totals));
    return totals;
}

MatrixTotals writeCsv(const MatrixRun &run)
{
    writeOut(csvHead(run.columns));
    return decideMatrix(
        run.columns, run.request, run.media,
        [](const SeenFile &file, const MatrixResults &results) {
            return csvRow(file.path, results);
        },
        [](const std::string &row, MatrixTotals &) { writeOut(row); });
}

MatrixTotals writeReasons(const MatrixRun &run)
{
    MatrixTotals totals = decideMatrix(
        run.columns, run.request, run.media,
        [&](const SeenFile &, const MatrixResults &results) {
            return reasonsOf(results, run.columns, run.request);
        },
        [](const CellReasons &reasons, MatrixTotals &totals) { count(reasons, totals); });
    writeOut(reasonLines(totals, run.columns));
    return totals;
}

/// Hands out each file with why its cells are as they are.
template <class Emit>
MatrixTotals explainAll(const MatrixRun &run, Emit emit)
{
    useColours(ColourUse::Never); // the reasons are those of the text
    return decideMatrix(
        run.columns, run.request, run.media,
        [&](const SeenFile &file, const MatrixResults &results) {
            return explainRow(file, results, run.columns, run.request);
        },
        [&](const MatrixRow &row, MatrixTotals &totals) {
            count(row, totals);
            emit(row);
        });
}

MatrixTotals writeJson(const MatrixRun &run)
{
    MatrixJson json(run.columns);
    writeOut(json.head(run.request));
    MatrixTotals totals = explainAll(run, [&](const MatrixRow &row) { writeOut(json.row(row)); });
    writeOut(json.tail(totals));
    return totals;
}

MatrixTotals writePage(const MatrixRun &run)
{
    const OutputPlace place(run.page, true);
    place.refuseOther(pageStart(), "a page of vornak matrix");
    MatrixPage page(run.columns, run.request);
    MatrixTotals totals = explainAll(run, [&](const MatrixRow &row) { page.add(row); });
    writeWholeFile(page.text(totals), place);
    writeOut(MatrixTable(run.columns, outputWidth()).sums(totals));
    return totals;
}

int runMatrix(const MatrixOptions &options)
{
    claimStandardOutput();
    checkMedia(options.media, std::ranges::count(options.profiles, "-") > 0);
    const DecisionRequest request = requestOf(options);
    const std::vector<MatrixColumn> columns = loadColumns(pathsOf(options));
    if (options.expecting.isAsked())
        return runExpecting(options.expecting, columns, request, options.media);
    const MatrixRun run{columns, request, options.media, options.page};
    const auto write = options.json            ? writeJson
                       : options.csv           ? writeCsv
                       : options.reasons       ? writeReasons
                       : !options.page.empty() ? writePage
                                               : writeTable;
    const MatrixTotals totals = write(run);
    return totals.unreadable > 0 || lacksPlayer(columns) ? kIncomplete : kDone;
}

} // namespace

void addMatrix(CLI::App &app, int &status)
{
    auto options = std::make_shared<MatrixOptions>();
    CLI::App *command = app.add_subcommand("matrix", kMatrixHelp);
    addRepeatable(*command, "-p,--profile", options->profiles,
                  "A player's Device profile: its file, one of the names that vornak profile list "
                  "shows, or - for standard input; may be repeated")
        ->type_name("PROFILE");
    command
        ->add_option("--profiles", options->folder,
                     "A folder of profiles: all files in it that end in .xml")
        ->type_name("DIR");
    addMediaOrProbed(*command, options->media);
    auto *json = command->add_flag("--json", options->json, "Print a JSON document");
    auto *csv = command
                    ->add_flag("--csv", options->csv,
                               "Print a line of comma-separated values for each file")
                    ->excludes(json);
    auto *reasons = command
                        ->add_flag("--reasons", options->reasons,
                                   "Print which reasons cost how many files, for all players")
                        ->excludes(json)
                        ->excludes(csv);
    auto *page = command
                     ->add_option("--html", options->page,
                                  "Write a page for a browser to this file, and print the sums")
                     ->type_name("FILE")
                     ->excludes(json)
                     ->excludes(csv)
                     ->excludes(reasons);
    addExpectingOptions(*command, options->expecting, {json, csv, reasons, page});
    addMatchingOptions(*command, *options);
    command->add_flag("--force", options->force, "Transcode whatever the rules say");
    addColourOption(*command);
    command->footer(kMatrixExamples);
    command->callback([options, &status] { status = runMatrix(*options); });
}

} // namespace vornak::tool

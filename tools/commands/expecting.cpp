#include "tools/commands/expecting.h"

#include "tools/collection/expectation.h"
#include "tools/commands/whole_file.h"
#include "tools/files/output_place.h"
#include "tools/terminal/counted.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>

namespace vornak::tool {
namespace {

using Cells = std::vector<ExpectedCell>;

/// Decides about all, and gives the cells that there are to `take`, in their order.
template <class Take>
MatrixTotals forEachCell(const std::vector<MatrixColumn> &columns, const DecisionRequest &request,
                         const MediaNames &media, Take take)
{
    useColours(ColourUse::Never);
    return decideMatrix(
        columns, request, media,
        [&](const SeenFile &file, const MatrixResults &results) {
            Cells cells;
            for (std::size_t i = 0; i < columns.size(); ++i)
                if (results[i])
                    cells.push_back(cellOf(columns[i], file.path, *results[i], request));
            return cells;
        },
        [&](const Cells &cells, MatrixTotals &) {
            for (const ExpectedCell &cell : cells) take(cell);
        });
}

int save(const std::string &path, const std::vector<MatrixColumn> &columns,
         const DecisionRequest &request, const MediaNames &media)
{
    const OutputPlace place(path, true);
    place.refuseOther(expectationStart(), "an expectation");
    std::string text = expectationHead();
    std::size_t cells = 0;
    const MatrixTotals totals = forEachCell(columns, request, media, [&](const ExpectedCell &cell) {
        text += lineOf(cell);
        ++cells;
    });
    writeWholeFile(text, place);
    writeOut(fmt::format("{} about {} saved in {}\n", counted(cells, "decision"),
                         counted(totals.files, "file"), printable(path)));
    return totals.unreadable > 0 || lacksPlayer(columns) ? kIncomplete : kDone;
}

int compare(const std::string &path, const std::vector<MatrixColumn> &columns,
            const DecisionRequest &request, const MediaNames &media)
{
    Expectation expected(path);
    forEachCell(columns, request, media,
                [&](const ExpectedCell &cell) { writeOut(expected.compare(cell)); });
    writeOut(expected.end());
    return expected.isMet() ? kDone : kIncomplete;
}

} // namespace

void addExpectingOptions(CLI::App &command, ExpectingOptions &options,
                         const std::vector<CLI::Option *> &others)
{
    auto *save =
        command
            .add_option("--save-expectation", options.save,
                        "Save the decisions with their reasons in this file, a line each, to be "
                        "compared later, in place of any other output")
            ->type_name("FILE");
    auto *expect = command
                       .add_option("--expect", options.expect,
                                   "Print, in place of any other output, which decisions are other "
                                   "than those saved in this file, and why; there are some: exit "
                                   "status 1")
                       ->type_name("FILE")
                       ->excludes(save);
    for (CLI::Option *other : others) {
        save->excludes(other);
        expect->excludes(other);
    }
}

int runExpecting(const ExpectingOptions &options, const std::vector<MatrixColumn> &columns,
                 const DecisionRequest &request, const MediaNames &media)
{
    return options.save.empty() ? compare(options.expect, columns, request, media)
                                : save(options.save, columns, request, media);
}

} // namespace vornak::tool

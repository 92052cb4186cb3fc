#include "tools/collection/cell_reason.h"

#include "tools/profile/profile_file.h"
#include "tools/terminal/counted.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>

namespace vornak::tool {
namespace {

MainReason reasonOf(const FileResult &result, const ProfileSession &session,
                    const DecisionRequest &request)
{
    if (const auto *undecided = std::get_if<Undecided>(&result)) return mainReason(*undecided);
    const auto &decision = std::get<Decision>(result);
    return mainReason(decision, explain(decision, request), session);
}

struct Row {
    const MatrixColumn *column; ///< null: it is the same for all players
    ReasonCounts::Row reason;
};

std::string lineOf(const Row &row, std::size_t files)
{
    const auto &[column, reason] = row;
    const std::string player =
        column ? fmt::format("{}{}: ", printable(profileTitle(column->path)),
                             reason.line > 0 ? fmt::format(":{}", reason.line) : "")
               : "";
    return fmt::format("{} of {}: {}{}: {}\n", reason.files, counted(files, "file"), player,
                       nameOf(reason.outcome), reason.text);
}

} // namespace

CellReasons reasonsOf(const MatrixResults &results, const std::vector<MatrixColumn> &columns,
                      const DecisionRequest &request)
{
    CellReasons reasons(results.size());
    for (std::size_t i = 0; i < results.size(); ++i)
        if (results[i]) reasons[i] = reasonOf(*results[i], *columns[i].session, request);
    return reasons;
}

void count(const CellReasons &reasons, MatrixTotals &totals)
{
    for (std::size_t i = 0; i < reasons.size(); ++i)
        if (reasons[i]) totals.columns[i].reasons.add(*reasons[i]);
}

std::string reasonLines(const MatrixTotals &totals, const std::vector<MatrixColumn> &columns)
{
    std::vector<Row> rows;
    bool isFirst = true; // of those that have a profile
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (ReasonCounts::Row &reason : totals.columns[i].reasons.rows()) {
            const bool isOfAll = isOfFile(reason.code);
            if (!isOfAll || isFirst)
                rows.push_back({isOfAll ? nullptr : &columns[i], std::move(reason)});
        }
        isFirst = isFirst && !columns[i].session;
    }
    std::ranges::stable_sort(rows, std::greater<>(),
                             [](const Row &row) { return row.reason.files; });
    std::string text;
    for (const Row &row : rows) text += lineOf(row, totals.files);
    return text;
}

} // namespace vornak::tool

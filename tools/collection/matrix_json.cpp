#include "tools/collection/matrix_json.h"

#include "tools/decide/decision_json.h"
#include "tools/profile/profile_document.h"
#include "tools/terminal/printable.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>

namespace vornak::tool {
namespace {

CellWhy whyOf(const FileResult &result, const ProfileSession &session,
              const DecisionRequest &request)
{
    if (const auto *undecided = std::get_if<Undecided>(&result))
        return {mainReason(*undecided), {{printable(undecided->message)}}, {}};
    const auto &decision = std::get<Decision>(result);
    const Explanation explanation = explain(decision, request);
    return {mainReason(decision, explanation, session),
            decisionLines(decision, explanation, session),
            visitedRules(decision, explanation, session)};
}

/// Of a file that some player has a decision for: it is the same for all.
std::string sourceOf(const MatrixResults &results)
{
    for (const auto &result : results)
        if (result && std::holds_alternative<Decision>(*result))
            return sourceText(std::get<Decision>(*result));
    return {};
}

/// The elements that are written in a profile, each with its line.
Json ruleTags(const std::string &path)
{
    Json tags = Json::array();
    const ProfileDocument document(path);
    for (const auto &[line, tag] : document.writtenTags())
        tags.push_back({{"line", line}, {"text", printable(tag)}});
    return tags;
}

Json columnFields(const MatrixColumn &column)
{
    Json json{{"name", printable(column.name)}};
    if (column.session) {
        json.update(profileFields(column.path, *column.session));
        json["error"] = nullptr;
        json["rules"] = ruleTags(column.path);
    } else {
        json.update(pathFields(column.path));
        json["error"] = column.error; // which is printable
    }
    return json;
}

} // namespace

MatrixRow explainRow(const SeenFile &file, const MatrixResults &results,
                     const std::vector<MatrixColumn> &columns, const DecisionRequest &request)
{
    MatrixRow row{file.path, sourceOf(results), {}};
    row.cells.resize(results.size());
    for (std::size_t i = 0; i < results.size(); ++i)
        if (results[i]) row.cells[i] = whyOf(*results[i], *columns[i].session, request);
    return row;
}

void count(const MatrixRow &row, MatrixTotals &totals)
{
    for (std::size_t i = 0; i < row.cells.size(); ++i)
        if (row.cells[i]) totals.columns[i].reasons.add(row.cells[i]->reason);
}

std::string NumberedParts::list() const
{
    return fmt::format("[\n{}\n]", fmt::join(parts_, ",\n"));
}

std::string MatrixJson::head(const DecisionRequest &request) const
{
    Json profiles = Json::array();
    for (const MatrixColumn &column : columns_) profiles.push_back(columnFields(column));
    return listHead("vornak-matrix",
                    {{"options", optionFields(request)}, {"profiles", std::move(profiles)}});
}

std::size_t MatrixJson::numberOf(const ShownLine &line)
{
    key_ = line.text;
    key_ += '\n'; // which no text holds
    fmt::format_to(std::back_inserter(key_), "{}", line.line);
    return texts_.numberOf(key_, [&] {
        const std::string place = line.line > 0 ? fmt::format(",\"line\":{}", line.line) : "";
        return fmt::format(R"({{"text":{}{}}})", jsonText(line.text), place);
    });
}

std::size_t MatrixJson::numberOf(const VisitedRules &walk)
{
    std::string json = fmt::format("[{}", numberOf(ShownLine{walk.heading}));
    for (const ShownLine &rule : walk.rules) json += fmt::format(",{}", numberOf(rule));
    json += ']';
    return walks_.numberOf(json, [&] { return json; });
}

std::size_t MatrixJson::numberOf(const CellWhy &why)
{
    const MainReason &reason = why.reason;
    std::vector<std::size_t> lines, visited;
    for (const ShownLine &line : why.lines) lines.push_back(numberOf(line));
    for (const VisitedRules &walk : why.visited) visited.push_back(numberOf(walk));
    const std::size_t text = numberOf(ShownLine{reason.text, reason.line});
    const std::size_t ofMany = numberOf(ShownLine{reason.ofMany, reason.line});
    std::string json = fmt::format(
        R"({{"outcome":"{}","part":{},"code":"{}","reason":{},"ofMany":{},"lines":[{}],"visited":[{}]}})",
        nameOf(reason.outcome), reason.part.empty() ? "null" : jsonText(reason.part), reason.code,
        text, ofMany, fmt::join(lines, ","), fmt::join(visited, ","));
    return whys_.numberOf(json, [&] { return json; });
}

std::string MatrixJson::row(const MatrixRow &row)
{
    std::string cells;
    for (const auto &cell : row.cells) {
        if (!cells.empty()) cells += ',';
        cells += cell ? std::to_string(numberOf(*cell)) : "null";
    }
    std::string json = pathFields(row.path).dump();
    json.pop_back();
    return fmt::format(R"({}{},"source":{},"cells":[{}]}})",
                       std::exchange(hasRows_, true) ? ",\n" : "", json,
                       row.source.empty() ? "null" : jsonText(row.source), cells);
}

std::string MatrixJson::tail(const MatrixTotals &totals)
{
    Json summary{{"files", totals.files}, {"skipped", totals.skipped}, {"profiles", Json::array()}};
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        Json sums = columns_[i].session ? summaryFields(totals.columns[i], true) : Json();
        if (columns_[i].session) sums.erase("skipped");
        summary["profiles"].push_back(std::move(sums));
    }
    return fmt::format("\n],\n\"whys\":{},\n\"visited\":{},\n\"texts\":{},\n\"summary\":{}}}\n",
                       whys_.list(), walks_.list(), texts_.list(), summary.dump());
}

} // namespace vornak::tool

#include "tools/collection/matrix_csv.h"

#include "tools/terminal/printable.h"

#include <string_view>

namespace vornak::tool {
namespace {

/// A quoted field. What a spreadsheet would take for a formula gets an apostrophe before it.
std::string field(const std::string &text)
{
    std::string quoted = "\"";
    const std::string shown = printable(text);
    if (std::string_view("=+-@").find(shown.substr(0, 1)) != std::string_view::npos &&
        !shown.empty())
        quoted += '\'';
    for (const char c : shown) quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

} // namespace

std::string csvHead(const std::vector<MatrixColumn> &columns)
{
    std::string text = "\"file\"";
    for (const MatrixColumn &column : columns) text += ',' + field(column.name);
    return text + "\n";
}

std::string csvRow(const std::string &path, const MatrixResults &results)
{
    std::string text = field(path);
    for (const auto &result : results) {
        text += ',';
        text += result ? nameOf(outcomeOf(*result)) : "unloadable";
    }
    return text + "\n";
}

} // namespace vornak::tool

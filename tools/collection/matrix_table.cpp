#include "tools/collection/matrix_table.h"

#include "tools/terminal/counted.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr std::string_view s_Letters = "kravx?"; // by outcome
static_assert(s_Letters.size() == kOutcomes);
constexpr std::size_t kLeastName = 20; // characters that a table leaves for a file's name

std::string_view colourOf(Outcome outcome)
{
    const Colours &c = colours();
    if (outcome == Outcome::Kept) return c.good;
    return outcome < Outcome::Refused ? c.change : c.bad;
}

std::string cellOf(const std::optional<FileResult> &result)
{
    const Colours &c = colours();
    if (!result) return fmt::format("{}!{}", c.bad, c.reset);
    const Outcome outcome = outcomeOf(*result);
    return fmt::format("{}{}{}", colourOf(outcome), letterOf(outcome), c.reset);
}

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

std::size_t characters(std::string_view text)
{
    return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, isContinuation));
}

std::string titleOf(const MatrixColumn &column)
{
    if (!column.session) return "! " + column.error;
    return fmt::format("{} ({})", printable(column.name),
                       printable(column.session->profile().deviceName));
}

} // namespace

char letterOf(Outcome outcome)
{
    return s_Letters[static_cast<std::size_t>(outcome)];
}

MatrixTable::MatrixTable(const std::vector<MatrixColumn> &columns, std::size_t width)
    : columns_(columns), width_(width)
{
    if (width == 0 || 2 * columns.size() + kLeastName <= width) gap_.assign(1, ' ');
}

/// The end of a text tells more than its start.
std::string MatrixTable::cut(std::string text, std::size_t room) const
{
    if (width_ == 0) return text;
    room = std::max(std::min(room, width_), kLeastName);
    std::size_t tooMany = characters(text);
    if (tooMany <= room) return text;
    tooMany -= room - 1;
    std::size_t start = 0;
    for (; tooMany > 0 || (start < text.size() && isContinuation(text[start])); ++start)
        if (!isContinuation(text[start])) --tooMany;
    return "…" + text.substr(start);
}

std::string MatrixTable::head() const
{
    std::string text, lead;
    for (const MatrixColumn &column : columns_) {
        text += lead + cut(titleOf(column), width_ - std::min(width_, lead.size())) + '\n';
        lead += '|' + gap_;
    }
    return text;
}

std::string MatrixTable::row(const std::string &path, const MatrixResults &results) const
{
    std::string text;
    for (const auto &result : results) text += cellOf(result) + gap_;
    const std::size_t taken = results.size() * (1 + gap_.size()) + 1;
    return text + ' ' + cut(printable(path), width_ - std::min(width_, taken)) + '\n';
}

std::string MatrixTable::sums(const MatrixTotals &totals) const
{
    const Colours &c = colours();
    std::string text;
    for (int i = 0; i < kOutcomes; ++i) {
        const auto outcome = static_cast<Outcome>(i);
        text += fmt::format("{}{}{}{} {}", i > 0 ? "  " : "", colourOf(outcome), letterOf(outcome),
                            c.reset, nameOf(outcome));
    }
    text += '\n';
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        for (int i = 0; i < kOutcomes; ++i) {
            const auto outcome = static_cast<Outcome>(i);
            const std::size_t width = nameOf(outcome).size() + 2;
            if (columns_[column].session)
                text += fmt::format("{:>{}}  ", totals.columns[column].of(outcome), width);
            else
                text += fmt::format("{:>{}}  ", "-", width);
        }
        text += printable(columns_[column].name) + '\n';
    }
    text +=
        fmt::format("{}, {}", counted(totals.files, "file"), counted(columns_.size(), "player"));
    if (totals.skipped > 0) text += fmt::format("; {} skipped as no media", totals.skipped);
    return text + '\n';
}

} // namespace vornak::tool

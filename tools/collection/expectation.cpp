#include "tools/collection/expectation.h"

#include "tools/decide/decision_text.h"
#include "tools/files/text_lines.h"
#include "tools/terminal/counted.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace vornak::tool {
namespace {

constexpr std::string_view kHead = "# vornak expectation 1: player | file | outcome | why";
constexpr std::string_view kSeparator = " | ";
constexpr std::size_t kFewestColumns = 4, kMostColumns = 16; // a decision has fewer lines

/// A column, in which nothing can be taken for what stands between two.
std::string column(const std::string &text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool joins = i > 0 && i + 1 < text.size() && text[i - 1] != ' ' && text[i + 1] != ' ';
        if (text[i] == '|' && !joins)
            out += "\\x7c";
        else
            out += text[i];
    }
    return out;
}

std::vector<std::string> columnsOf(std::string_view line)
{
    std::vector<std::string> columns;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = line.find(kSeparator);
        columns.emplace_back(line.substr(0, end));
        if (end != std::string_view::npos) line.remove_prefix(end + kSeparator.size());
    }
    return columns;
}

std::string keyOf(const ExpectedCell &cell)
{
    return cell.profile + std::string(kSeparator) + cell.file;
}

/// Whether nothing in the line does anything on a terminal.
bool isShowable(std::string line)
{
    std::ranges::replace(line, '\\', '/'); // of which printable() makes two
    return printable(line) == line;
}

/// Removes the position of a rule that `text` ends with, up to its name: of "rule 0 (aac" the "0 ".
void dropPosition(std::string &text)
{
    constexpr std::size_t kLongestName = 100;
    const std::size_t open = text.rfind('(');
    if (open == std::string::npos || open == 0 || text.size() - open > kLongestName) return;
    std::size_t start = open - 1;
    while (start > 0 && text[start - 1] >= '0' && text[start - 1] <= '9') --start;
    text.erase(start, open - start);
}

/// A fact without where the rules stand: "rule 0 (aac, line 14)" becomes "rule (aac)".
std::string withoutPlaces(std::string_view fact)
{
    constexpr std::string_view kLine = ", line ";
    std::string text;
    for (std::size_t at = fact.find(kLine); at != std::string_view::npos; at = fact.find(kLine)) {
        std::string before(fact.substr(0, at));
        dropPosition(before);
        text += before;
        fact.remove_prefix(at + kLine.size());
        fact.remove_prefix(std::min(fact.find_first_not_of("0123456789"), fact.size()));
    }
    return text.append(fact);
}

std::string_view nameOf(std::string_view fact)
{
    return fact.substr(0, fact.find(": "));
}

/// What the fact of that name says, or "nothing".
std::string_view valueOf(const ExpectedCell &cell, std::string_view name)
{
    const auto found =
        std::ranges::find(cell.facts, name, [](const auto &one) { return nameOf(one); });
    if (found == cell.facts.end()) return "nothing";
    return std::string_view(*found).substr(std::min(name.size() + 2, found->size()));
}

std::vector<std::string_view> factNames(const ExpectedCell &was, const ExpectedCell &now)
{
    std::vector<std::string_view> names;
    for (const ExpectedCell *cell : {&now, &was})
        for (const std::string &fact : cell->facts)
            if (std::ranges::count(names, nameOf(fact)) == 0) names.push_back(nameOf(fact));
    return names;
}

/// Of a file that stays as it is, what keeps it is nobody's business.
bool matters(std::string_view fact, const ExpectedCell &was, const ExpectedCell &now)
{
    return was.outcome != now.outcome || now.outcome != "kept" || fact == "output";
}

} // namespace

ExpectedCell cellOf(const MatrixColumn &player, const std::string &path, const FileResult &result,
                    const DecisionRequest &request)
{
    ExpectedCell cell{column(printable(player.name)), column(printable(path)),
                      std::string(nameOf(outcomeOf(result)))};
    if (const auto *undecided = std::get_if<Undecided>(&result)) {
        cell.facts.push_back(column("error: " + printable(undecided->message)));
        return cell;
    }
    const auto &decision = std::get<Decision>(result);
    for (const ShownLine &line :
         decisionLines(decision, explain(decision, request), *player.session))
        cell.facts.push_back(column(line.text));
    return cell;
}

std::string_view expectationStart()
{
    return kHead.substr(0, kHead.find('1'));
}

std::string expectationHead()
{
    return std::string(kHead) + '\n';
}

std::string lineOf(const ExpectedCell &cell)
{
    return fmt::format("{}{}{}{}{}\n", keyOf(cell), kSeparator, cell.outcome, kSeparator,
                       fmt::join(cell.facts, kSeparator));
}

std::string changeText(const ExpectedCell &was, const ExpectedCell &now)
{
    std::string text;
    for (const std::string_view name : factNames(was, now)) {
        const std::string_view before = valueOf(was, name), after = valueOf(now, name);
        if (!matters(name, was, now) || withoutPlaces(before) == withoutPlaces(after)) continue;
        text +=
            fmt::format("  {}: was {}\n  {:{}}  now {}\n", name, before, "", name.size(), after);
    }
    const bool isOther = was.outcome != now.outcome;
    if (text.empty() && !isOther) return text;
    return fmt::format("{}: {}: {}{}\n", now.profile, now.file, now.outcome,
                       isOther ? ", was " + was.outcome : "") +
           text;
}

Expectation::Expectation(const std::string &path)
{
    TextLines lines(path);
    std::string line;
    if (!lines.next(line) || line != kHead)
        lines.refuse(1, "no expectation, or not one of version 1");
    while (lines.next(line)) {
        const auto refuse = [&](std::string_view why) { lines.refuse(lines.number(), why); };
        if (lines.isCut()) refuse("cut, its end is missing");
        if (!isShowable(line)) refuse("holds what can't be shown, and should be \\xNN");
        std::vector<std::string> columns = columnsOf(line);
        if (columns.size() < kFewestColumns || columns.size() > kMostColumns)
            refuse("not as an expectation has it: player | file | outcome | why");
        ExpectedCell cell{std::move(columns[0]),
                          std::move(columns[1]),
                          std::move(columns[2]),
                          {columns.begin() + 3, columns.end()}};
        if (!places_.try_emplace(keyOf(cell), cells_.size()).second)
            refuse("the same player and file as in a line before");
        cells_.push_back({std::move(cell)});
    }
}

std::string Expectation::compare(const ExpectedCell &now)
{
    ++compared_;
    const auto place = places_.find(keyOf(now));
    if (place == places_.end()) {
        ++added_;
        return fmt::format("{}: {}: {}, not expected at all\n", now.profile, now.file, now.outcome);
    }
    Known &known = cells_[place->second];
    seen_ += !std::exchange(known.isSeen, true);
    std::string text = changeText(known.cell, now);
    changed_ += !text.empty();
    return text;
}

std::string Expectation::end() const
{
    std::string text;
    for (const Known &known : cells_)
        if (!known.isSeen)
            text += fmt::format("{}: {}: missing, was {}\n", known.cell.profile, known.cell.file,
                                known.cell.outcome);
    if (compared_ == 0 || !isMet()) text += '\n';
    return text + fmt::format("{}: {} as expected, {} changed, {} not expected, {} "
                              "missing\n",
                              counted(compared_, "decision"), compared_ - changed_ - added_,
                              changed_, added_, cells_.size() - seen_);
}

} // namespace vornak::tool

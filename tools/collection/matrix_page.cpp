#include "tools/collection/matrix_page.h"

#include "tools/collection/matrix_table.h"
#include "tools/collection/page_template.h"
#include "tools/terminal/counted.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::size_t kOwnLines = 2000; // files that have a line each, and lines without scripts

constexpr std::string_view s_Meanings[] = {
    // by outcome
    "sent as it is",
    "put into another container",
    "its sound is transcoded",
    "its picture is transcoded",
    "the profile forbids to transcode it, or it is a still image",
    "nothing can be decided",
};
static_assert(std::size(s_Meanings) == kOutcomes);

std::string replaced(std::string_view text, std::string_view special,
                     std::string (*replacement)(char))
{
    std::string out;
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find_first_of(special), text.size());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) break;
        out += replacement(text.front());
        text.remove_prefix(1);
    }
    return out;
}

/// For elements and quoted attributes; `text` is printable.
std::string html(std::string_view text)
{
    return replaced(text, "&<>\"'", [](char c) { return fmt::format("&#{};", int{c}); });
}

/// A document in a script element, which it can't end.
std::string inScript(std::string_view json)
{
    return replaced(json, "<", [](char) { return std::string("\\u003c"); });
}

std::string letter(Outcome outcome)
{
    return fmt::format(R"(<span class="letter {0}" data-outcome="{0}">{1}</span>)", nameOf(outcome),
                       letterOf(outcome));
}

template <class Write>
std::string forOutcomes(Write write)
{
    std::string text;
    for (int i = 0; i < kOutcomes; ++i) text += write(static_cast<Outcome>(i));
    return text;
}

std::string meaning(Outcome outcome)
{
    return fmt::format("<li>{} {}: {}</li>\n", letter(outcome), nameOf(outcome),
                       s_Meanings[static_cast<std::size_t>(outcome)]);
}

std::string sumHead(Outcome outcome)
{
    return fmt::format(R"(<th scope="col" class="number">{}</th>)", letter(outcome));
}

/// The numbers of one player, and a bar of them.
std::string sums(const Totals &totals)
{
    const std::string numbers = forOutcomes([&](Outcome outcome) {
        return fmt::format(R"(<td class="number{}">{}</td>)", totals.of(outcome) ? "" : " zero",
                           totals.of(outcome));
    });
    return numbers + R"(<td class="share"><span class="bar" aria-hidden="true">)" +
           forOutcomes([&](Outcome outcome) {
               return totals.of(outcome) == 0 ? ""
                                              : fmt::format(R"(<i class="{}" style="flex:{}"></i>)",
                                                            nameOf(outcome), totals.of(outcome));
           }) +
           "</span></td>";
}

/// The template, with {{NAME}} replaced.
std::string filled(std::string_view page, const std::map<std::string_view, std::string> &values)
{
    std::string out;
    for (std::size_t at; (at = page.find("{{")) != std::string_view::npos;) {
        out += page.substr(0, at);
        page.remove_prefix(at + 2);
        const std::size_t end = page.find("}}");
        out += values.at(page.substr(0, end));
        page.remove_prefix(end + 2);
    }
    return out.append(page);
}

} // namespace

std::string_view pageStart()
{
    return kPageTemplate.substr(0, kPageTemplate.find("{{"));
}

MatrixPage::MatrixPage(const std::vector<MatrixColumn> &columns, const DecisionRequest &request)
    : columns_(columns), json_(columns), head_(json_.head(request))
{}

std::size_t MatrixPage::placeOf(std::size_t column, const MainReason &reason)
{
    const auto [place, isNew] = places_.try_emplace(
        fmt::format("{} {} {} {}", column, nameOf(reason.outcome), reason.part, reason.ofMany),
        reasons_.size());
    if (isNew) reasons_.push_back({column, reason});
    return place->second;
}

MatrixPage::Cells MatrixPage::countCells(const MatrixRow &row)
{
    Cells cells(row.cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (!row.cells[i]) continue;
        cells[i] = placeOf(i, row.cells[i]->reason);
        ++reasons_[*cells[i]].files;
    }
    return cells;
}

void MatrixPage::add(const MatrixRow &row)
{
    Line line{row.path, countCells(row), {}, {}};
    if (++files_ == kOwnLines + 1)
        for (Line &own : std::exchange(lines_, {})) addToGroup(std::move(own));
    if (!groups_.contains(line.cells)) line.json = json_.row(row);
    if (files_ > kOwnLines)
        addToGroup(std::move(line));
    else
        lines_.push_back(std::move(line));
}

void MatrixPage::addToGroup(Line line)
{
    const auto [group, isNew] = groups_.try_emplace(line.cells, lines_.size());
    if (isNew)
        lines_.push_back(std::move(line));
    else
        lines_[group->second].others.push_back(std::move(line.path));
}

/// Numbers those that cost something, the most frequent first, and returns them so.
std::vector<const MatrixPage::CountedReason *> MatrixPage::numberReasons()
{
    std::vector<CountedReason *> costly;
    for (CountedReason &one : reasons_)
        if (one.reason.outcome != Outcome::Kept) costly.push_back(&one);
    std::ranges::stable_sort(costly, std::greater<>(), &CountedReason::files);
    for (std::size_t i = 0; i < costly.size(); ++i) costly[i]->number = i + 1;
    return {costly.begin(), costly.end()};
}

std::string MatrixPage::players(const MatrixTotals &totals) const
{
    std::string text;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const MatrixColumn &column = columns_[i];
        const auto &session = column.session;
        text += fmt::format(
            R"(<tr{}><th scope="row"><span{}>{}</span> <span class="path">{}</span></th>{}</tr>)"
            "\n",
            session ? "" : R"( class="failed")", session ? R"( class="pick")" : "",
            html(printable(column.name)),
            session ? html(printable(session->profile().deviceName)) : "",
            session ? sums(totals.columns[i])
                    : fmt::format(R"(<td colspan="{}">! {}</td><td class="share"></td>)", kOutcomes,
                                  html(column.error)));
    }
    return text;
}

std::string MatrixPage::reasons(const std::vector<const CountedReason *> &sorted) const
{
    std::string text;
    for (const CountedReason *one : sorted)
        text += fmt::format(
            R"(<tr data-player="{}" data-outcome="{}" data-part="{}"><td class="number">{}</td>)"
            R"(<td class="number">{}</td><td>{} <b>{}</b> <span class="pick">{}</span></td></tr>)"
            "\n",
            one->column, nameOf(one->reason.outcome), one->reason.part, one->number, one->files,
            letter(one->reason.outcome), html(printable(columns_[one->column].name)),
            html(one->reason.ofMany));
    return text.empty() ? R"(<tr><td colspan="3">Every player takes every file.</td></tr>)" : text;
}

std::string MatrixPage::cell(const std::optional<std::size_t> &place) const
{
    if (!place) return "<td>!</td>";
    const auto &[column, reason, files, number] = reasons_[*place];
    return fmt::format(R"(<td class="{}">{}{}</td>)", nameOf(reason.outcome),
                       letterOf(reason.outcome), number > 0 ? fmt::format(" {}", number) : "");
}

std::string MatrixPage::cells() const
{
    std::string text = R"(<table><thead><tr><th scope="col">File</th>)";
    for (const MatrixColumn &column : columns_)
        text +=
            fmt::format(R"(<th scope="col"><span>{}</span></th>)", html(printable(column.name)));
    text += "</tr></thead><tbody>\n";
    for (std::size_t i = 0; i < std::min(lines_.size(), kOwnLines); ++i) {
        const Line &line = lines_[i];
        const std::string others =
            line.others.empty() ? "" : fmt::format(" + {}", line.others.size());
        text += fmt::format(R"(<tr><th scope="row">{}{}</th>)", html(printable(line.path)), others);
        for (const auto &place : line.cells) text += cell(place);
        text += "</tr>\n";
    }
    return text + "</tbody></table>";
}

std::string MatrixPage::document(const MatrixTotals &totals)
{
    std::string json = head_;
    for (const Line &line : lines_) {
        json += line.json;
        if (line.others.empty()) continue;
        Json others = Json::array();
        for (const std::string &path : line.others) others.push_back(printable(path));
        json.pop_back();
        json += fmt::format(R"(,"others":{}}})", others.dump());
    }
    return json + json_.tail(totals);
}

std::string MatrixPage::text(const MatrixTotals &totals)
{
    const auto sorted = numberReasons();
    return filled(kPageTemplate,
                  {{"title", fmt::format("{}, {}", counted(columns_.size(), "player"),
                                         counted(totals.files, "file"))},
                   {"key", forOutcomes(meaning)},
                   {"sums-head", forOutcomes(sumHead)},
                   {"players", players(totals)},
                   {"reasons", reasons(sorted)},
                   {"cells", cells()},
                   {"data", inScript(document(totals))}});
}

} // namespace vornak::tool

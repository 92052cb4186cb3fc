#include "tools/check/mends.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr std::size_t kContext = 3; // lines around a change

/// Lines, each with its end.
std::vector<std::string_view> linesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

/// Lines that change together, by their numbers from 0, and the text that takes their place.
struct Change {
    std::size_t from, to;
    std::string text;
};

std::vector<Change> changesOf(const std::string &text, const std::vector<std::string_view> &lines,
                              const std::vector<Edit> &edits)
{
    const auto lineAt = [&](std::size_t offset) {
        const char *const place = text.data() + offset;
        const auto after = std::ranges::upper_bound(lines, place, {}, &std::string_view::data);
        return static_cast<std::size_t>(after - lines.begin()) - 1;
    };
    const auto startOf = [&](std::size_t line) {
        return line < lines.size() ? static_cast<std::size_t>(lines[line].data() - text.data())
                                   : text.size();
    };
    std::vector<Change> changes;
    for (auto edit = edits.begin(); edit != edits.end();) {
        Change change{lineAt(edit->offset), 0, {}};
        std::vector<Edit> own;
        const std::size_t start = startOf(change.from);
        do {
            change.to = lineAt(edit->offset + edit->size) + 1;
            own.push_back({edit->offset - start, edit->size, edit->text});
            ++edit;
        } while (edit != edits.end() && lineAt(edit->offset) < change.to);
        change.text = withEdits(text.substr(start, startOf(change.to) - start), own);
        changes.push_back(std::move(change));
    }
    return changes;
}

void appendLines(std::string &diff, char mark, const std::vector<std::string_view> &lines)
{
    for (const std::string_view line : lines) {
        diff += fmt::format("{}{}", mark, line);
        if (!line.ends_with('\n')) diff += "\n\\ No newline at end of file\n";
    }
}

} // namespace

std::vector<Edit> editsOf(const std::vector<Finding> &findings)
{
    std::vector<Edit> edits;
    for (const Finding &finding : findings)
        edits.insert(edits.end(), finding.edits.begin(), finding.edits.end());
    std::ranges::stable_sort(edits, {}, &Edit::offset);
    std::size_t end = 0;
    std::erase_if(edits, [&](const Edit &edit) {
        if (edit.offset < end) return true;
        end = edit.offset + std::max<std::size_t>(edit.size, 1);
        return false;
    });
    return edits;
}

std::vector<Edit> joined(const std::vector<Edit> &before, const std::vector<Edit> &edits)
{
    std::vector<Edit> all = before;
    auto done = before.begin();
    std::size_t added = 0, removed = 0; // bytes by the edits that are done
    for (const Edit &edit : edits) {
        const auto placeOf = [&](const Edit &other) { return other.offset + added - removed; };
        while (done != before.end() && placeOf(*done) + done->text.size() <= edit.offset) {
            added += done->text.size();
            removed += done->size;
            ++done;
        }
        if (done == before.end() || edit.offset + edit.size <= placeOf(*done))
            all.push_back({edit.offset + removed - added, edit.size, edit.text});
    }
    std::ranges::stable_sort(all, {}, &Edit::offset);
    return all;
}

std::string withEdits(const std::string &text, const std::vector<Edit> &edits)
{
    std::string edited;
    std::size_t from = 0;
    for (const Edit &edit : edits) {
        edited.append(text, from, edit.offset - from).append(edit.text);
        from = edit.offset + edit.size;
    }
    return edited.append(text, from);
}

std::string diffOf(const std::string &name, const std::string &text, const std::vector<Edit> &edits)
{
    const std::vector<std::string_view> lines = linesOf(text);
    const auto part = [&](std::size_t from, std::size_t to) {
        return std::vector(lines.begin() + static_cast<std::ptrdiff_t>(from),
                           lines.begin() + static_cast<std::ptrdiff_t>(to));
    };
    const std::vector<Change> changes = changesOf(text, lines, edits);
    std::string diff = changes.empty() ? "" : fmt::format("--- {0}\n+++ {0}\n", name);
    std::size_t added = 0, removed = 0; // lines by the hunks before
    for (auto change = changes.begin(); change != changes.end();) {
        const std::size_t from = change->from - std::min(change->from, kContext);
        std::size_t at = from, plus = 0, minus = 0;
        std::string hunk;
        do {
            const std::vector<std::string_view> made = linesOf(change->text);
            appendLines(hunk, ' ', part(at, change->from));
            appendLines(hunk, '-', part(change->from, change->to));
            appendLines(hunk, '+', made);
            plus += made.size();
            minus += change->to - change->from;
            at = change->to;
            ++change;
        } while (change != changes.end() && change->from <= at + 2 * kContext);
        const std::size_t to = std::min(at + kContext, lines.size());
        appendLines(hunk, ' ', part(at, to));
        diff += fmt::format("@@ -{},{} +{},{} @@\n{}", from + 1, to - from,
                            from + 1 + added - removed, to - from + plus - minus, hunk);
        added += plus;
        removed += minus;
    }
    return diff;
}

} // namespace vornak::tool

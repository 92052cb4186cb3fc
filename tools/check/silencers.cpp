// Comments that silence findings: <!-- vornak: ignore ID ID (reason) --> before an element.
#include "tools/check/checks.h"

#include "base/ascii_case.h"
#include "tools/check/option_words.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <iterator>

namespace vornak::tool {
namespace {

constexpr std::string_view kMark = "vornak:";
constexpr auto kFaults = static_cast<std::size_t>(Fault::End);

/// Whether a comment that begins so is meant as one for vornak: "Vornak ignore", "vornak:ignore".
bool isNearly(std::string_view mark, std::string_view rest)
{
    const std::string_view name = kMark.substr(0, kMark.size() - 1);
    if (!beginsIgnoringCase(mark, name)) return false;
    const std::string_view behind = mark.substr(name.size());
    return behind == ":ignore" || ((behind.empty() || behind == ":") && takeWord(rest) == "ignore");
}

/// A node's successor in the order of the document, past all that is in it.
pugi::xml_node nextOutside(pugi::xml_node node)
{
    while (node && !node.next_sibling()) node = node.parent();
    return node.next_sibling();
}

pugi::xml_node next(pugi::xml_node node)
{
    return node.first_child() ? node.first_child() : nextOutside(node);
}

/// Part of the text: an element, from its start tag on, with all that is in it.
struct Span {
    std::size_t from, to;
};

/// What a comment is about; before the outermost element, the whole file.
Span spanAfter(pugi::xml_node comment, pugi::xml_node device, const ProfileDocument &document)
{
    pugi::xml_node element = comment.next_sibling();
    while (element && element.type() != pugi::node_element) element = element.next_sibling();
    if (!element) return {0, 0};
    const pugi::xml_node after = element == device ? pugi::xml_node() : nextOutside(element);
    return {element == device ? 0 : document.offsetOf(element),
            after ? document.offsetOf(after) : document.text().size() + 1};
}

/// The findings of each kind by their places, and which of them are silenced.
class Silenced {
public:
    explicit Silenced(std::vector<Finding> &findings) : findings_(findings)
    {
        std::ranges::stable_sort(findings_, {}, &Finding::offset);
        for (const Finding &finding : findings_)
            places_[static_cast<std::size_t>(finding.fault)].push_back(finding.offset);
        for (std::size_t i = 0; i < kFaults; ++i) steps_[i].resize(places_[i].size() + 1);
    }

    /// Whether there was anything to silence.
    bool silence(Fault fault, Span span)
    {
        const auto &places = places_[static_cast<std::size_t>(fault)];
        auto &steps = steps_[static_cast<std::size_t>(fault)];
        const auto first = std::ranges::lower_bound(places, span.from) - places.begin();
        const auto last = std::ranges::lower_bound(places, span.to) - places.begin();
        if (first >= last) return false;
        ++steps[static_cast<std::size_t>(first)];
        --steps[static_cast<std::size_t>(last)];
        return true;
    }

    void drop()
    {
        std::array<std::size_t, kFaults> at{};
        std::array<int, kFaults> depth{};
        std::erase_if(findings_, [&](const Finding &finding) {
            const auto fault = static_cast<std::size_t>(finding.fault);
            depth[fault] += steps_[fault][at[fault]++];
            return depth[fault] > 0;
        });
    }

private:
    std::vector<Finding> &findings_;
    std::array<std::vector<std::size_t>, kFaults> places_;
    std::array<std::vector<int>, kFaults> steps_; // how many silencers begin and end at each
};

/// Silences what the words after "ignore" name. Returns those in vain.
std::vector<std::string> silence(std::string list, Span span, Silenced &silenced)
{
    std::vector<std::string> useless;
    std::ranges::replace(list, ',', ' ');
    std::string_view words = list;
    std::ptrdiff_t open = 0; // brackets, in which a remark stands
    for (std::string_view word = takeWord(words); !word.empty(); word = takeWord(words)) {
        const bool isRemark = open > 0 || word.front() == '(';
        if (isRemark) open += std::ranges::count(word, '(') - std::ranges::count(word, ')');
        if (isRemark) continue;
        const auto kinds = faultKinds();
        const auto kind = std::ranges::find(kinds, word, &FaultKind::id);
        if (kind == kinds.end() || !silenced.silence(kind->fault, span)) useless.emplace_back(word);
    }
    return useless;
}

std::vector<std::string> faultIds()
{
    std::vector<std::string> ids;
    for (const FaultKind &kind : faultKinds()) ids.emplace_back(kind.id);
    return ids;
}

Finding uselessAt(std::size_t offset, std::string problem, std::string advice)
{
    return {offset, Fault::UselessIgnore, {}, {}, std::move(problem), std::move(advice)};
}

} // namespace

void applySilencers(pugi::xml_node device, Report &report)
{
    const ProfileDocument &document = report.document();
    if (document.text().find("ignore") == std::string::npos &&
        document.text().find(kMark) == std::string::npos)
        return;
    const std::vector<std::string> known = faultIds();
    Silenced silenced(report.findings());
    std::vector<Finding> useless;
    for (pugi::xml_node node = device.root().first_child(); node; node = next(node)) {
        std::string_view words = node.value();
        if (node.type() != pugi::node_comment) continue;
        const std::string_view mark = takeWord(words);
        if (mark != kMark && !isNearly(mark, words)) continue;
        const std::size_t offset = document.offsetOf(node);
        std::string_view list = words;
        if (mark != kMark || takeWord(list) != "ignore" || takeWord(list).empty()) {
            useless.push_back(uselessAt(offset, "a comment for vornak says \"ignore\" and what",
                                        "write <!-- vornak: ignore ID --> before an element"));
            continue;
        }
        takeWord(words);
        for (const std::string &id :
             silence(std::string(words), spanAfter(node, device, document), silenced))
            useless.push_back(
                std::ranges::find(known, id) != known.end()
                    ? uselessAt(offset,
                                fmt::format("nothing called {} is found in what follows", id),
                                "remove it")
                    : uselessAt(
                          offset, fmt::format("there is no finding called {}", excerpt(id)),
                          report.suggest(id, known, "vornak profile check --list shows all")));
    }
    silenced.drop();
    std::ranges::move(useless, std::back_inserter(report.findings()));
}

} // namespace vornak::tool

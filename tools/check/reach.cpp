// Rules that no source gets to: an earlier one takes all that they would take.
#include "tools/check/checks.h"

#include "decision/comparison.h"
#include "decision/container_agreement.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <span>

namespace vornak::tool {
namespace {

constexpr std::size_t kMostRules = kMaxRules;

/// The values of a source's property that a rule takes, both ends included.
struct Range {
    std::int64_t from = std::numeric_limits<std::int64_t>::min();
    std::int64_t to = std::numeric_limits<std::int64_t>::max();

    void narrow(Bound bound, int limit, int tolerance)
    {
        const bool close = tolerance > 0;
        if (close || bound == Bound::AtMost)
            to = std::min(to, std::int64_t{limit} + std::max(tolerance, 0));
        if (close || bound == Bound::AtLeast)
            from = std::max(from, std::int64_t{limit} - std::max(tolerance, 0));
    }
    bool contains(const Range &other) const { return from <= other.from && other.to <= to; }
};

template <const auto &Table, class Rule, class Source>
Range acceptedRange(const Rule &rule, int Source::*bounded)
{
    Range range;
    for (const auto &row : Table) {
        if (!isLimited(row, rule)) continue;
        const int tolerance = row.closeness ? row.closeness->in(rule) : 0;
        for (const auto *part : {row.first, row.second})
            if (part && part->bounded == bounded)
                range.narrow(part->bound, part->in(rule), tolerance);
    }
    return range;
}

/// Whether `rule` takes every source that `other` takes, as far as this comparison goes.
template <const auto &Table, class Rule, class Source>
bool coversIn(const Comparison<Rule, Source> &row, const Rule &rule, const Rule &other)
{
    const auto covers = [&](int Source::*bounded) {
        return acceptedRange<Table>(rule, bounded).contains(acceptedRange<Table>(other, bounded));
    };
    const int bits = row.first->in(rule), otherBits = row.first->in(other);
    if (row.first->bound == Bound::NotWithin) return allWithin(bits, otherBits);
    if (row.first->bound == Bound::Within)
        return !isLimited(row, rule) || (isLimited(row, other) && allWithin(otherBits, bits));
    return covers(row.first->bounded) && (!row.second || covers(row.second->bounded));
}

template <const auto &Table, class Rule>
bool coversAll(const Rule &rule, const Rule &other)
{
    return std::ranges::all_of(Table,
                               [&](const auto &row) { return coversIn<Table>(row, rule, other); });
}

bool covers(const VideoRule &rule, const VideoRule &other)
{
    return rule.vCodecId == kAnyCodec ||
           (rule.vCodecId == other.vCodecId && coversAll<s_VideoComparisons>(rule, other));
}

bool covers(const AudioRule &rule, const AudioRule &other)
{
    return rule.aCodecId == kAnyCodec ||
           (rule.aCodecId == other.aCodecId && coversAll<s_AudioComparisons>(rule, other));
}

bool covers(const ContainerEntry &entry, const ContainerEntry &other)
{
    if (containerPart(entry.formatId) == kAnyContainer) return true;
    return containerPart(entry.formatId) == containerPart(other.formatId) &&
           (subtypePart(entry.formatId) == 0 || entry.formatId == other.formatId);
}

/// Position of the first rule that leaves nothing for the one at `later`, or -1.
template <class Record>
int findCover(std::span<const RulePlace<Record>> rules, std::size_t later)
{
    for (std::size_t earlier = 0; earlier < later; ++earlier)
        if (covers(*rules[earlier].record, *rules[later].record)) return static_cast<int>(earlier);
    return -1;
}

template <class Record>
void checkReach(std::span<const RulePlace<Record>> rules, const char *element, Report &report)
{
    for (std::size_t i = 1; i < std::min(rules.size(), kMostRules); ++i) {
        const int cover = findCover(rules, i);
        if (cover < 0) continue;
        const int line = report.document().lineOf(rules[static_cast<std::size_t>(cover)].element);
        report.add(Fault::UnreachableRule, rules[i].element,
                   fmt::format("no source gets to rule {} of this list: rule {} (line {}) takes "
                               "all that it would take",
                               i, cover, line),
                   fmt::format("remove this {}, or move it up", element));
    }
    if (rules.size() > kMostRules)
        report.add(Fault::TooManyRules, rules[kMostRules].element,
                   fmt::format("{} {} elements from here on are never chosen: a list has {} places",
                               rules.size() - kMostRules, element, kMostRules),
                   "merge rules, or remove some");
}

} // namespace

void checkVideoReach(std::span<const RulePlace<VideoRule>> rules, Report &report)
{
    checkReach(rules, "VCODEC", report);
}

void checkAudioReach(std::span<const RulePlace<AudioRule>> rules, Report &report)
{
    checkReach(rules, "ACODEC", report);
}

void checkContainerReach(std::span<const RulePlace<ContainerEntry>> entries, Report &report)
{
    checkReach(entries, "FORMAT", report);
}

} // namespace vornak::tool

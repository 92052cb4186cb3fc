// How a rule and a source are compared. The matching takes its yes or no from a row of
// base/rule_facts.h, the tool the reason that it shows, and the options the limit that they record.
#pragma once

#include "base/rule_facts.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace vornak {

constexpr bool allWithin(int bits, int set)
{
    return (bits & set) == bits;
}

[[gnu::always_inline]] constexpr bool keepsBound(Bound bound, int value, int limit)
{
    switch (bound) {
    case Bound::NotWithin:
        return value == 0 || !allWithin(value, limit);
    case Bound::Within:
        return allWithin(value, limit);
    case Bound::AtMost:
        return value <= limit;
    case Bound::AtLeast:
        return value >= limit;
    case Bound::None:
    case Bound::Close:
        break;
    }
    return true;
}

/// Whether two values differ by at most `tolerance`, which is above 0. Unsigned, since the
/// distance of two ints can exceed an int.
[[gnu::always_inline]] constexpr bool isClose(int value, int limit, int tolerance)
{
    const auto a = static_cast<std::uint32_t>(value);
    const auto b = static_cast<std::uint32_t>(limit);
    return (value > limit ? a - b : b - a) <= static_cast<std::uint32_t>(tolerance);
}

/// Whether the rule sets the limit of this comparison at all.
template <class Rule, class Source>
[[gnu::always_inline]] constexpr bool isLimited(const Comparison<Rule, Source> &row,
                                                const Rule &rule)
{
    if (row.first->bound == Bound::NotWithin) return true;
    return row.first->in(rule) > 0 && (!row.second || row.second->in(rule) > 0);
}

/// Whether the source is on the right side of the rule's limit.
template <class Rule, class Source>
[[gnu::always_inline]] constexpr bool holds(const Comparison<Rule, Source> &row, const Rule &rule,
                                            const Source &source)
{
    if (!isLimited(row, rule)) return true;
    const auto keeps = [&](const Property<Rule, Source> &property) {
        return keepsBound(property.bound, property.in(source), property.in(rule));
    };
    if (!row.second) return keeps(*row.first);
    const int tolerance = row.closeness->in(rule);
    if (tolerance <= 0) return keeps(*row.first) && keeps(*row.second);
    return isClose(row.first->in(source), row.first->in(rule), tolerance) &&
           isClose(row.second->in(source), row.second->in(rule), tolerance);
}

/// Position of the first row of `Table` that refuses the source, or -1. The rows are expanded
/// where they stand, so that each costs what a comparison written by hand would. `before` is
/// called with each row ahead of its comparison.
template <const auto &Table, class Rule, class Source, class Before>
[[gnu::always_inline]] constexpr int findRefusal(const Rule &rule, const Source &source,
                                                 Before before)
{
    int refusal = -1;
    [&]<std::size_t... Row>(std::index_sequence<Row...>)
    {
        const auto passes = [&]<std::size_t Index>() __attribute__((always_inline))
        {
            before(Table[Index]);
            if (holds(Table[Index], rule, source)) return true;
            refusal = static_cast<int>(Index);
            return false;
        };
        static_cast<void>((passes.template operator()<Row>() && ...));
    }
    (std::make_index_sequence<Table.size()>{});
    return refusal;
}

template <const auto &Table, class Rule, class Source>
constexpr int findRefusal(const Rule &rule, const Source &source)
{
    return findRefusal<Table>(rule, source, [](const auto &) {});
}

} // namespace vornak

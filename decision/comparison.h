// The comparisons between a rule and a source, as data. The matching takes its yes or no from
// a row, the tool the reason that it shows, and the options the limit that they record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace vornak {

enum class Bound {
    NotWithin, ///< a source whose bits all lie in the rule's set is refused
    Within,    ///< every bit of the source must lie in the rule's set
    AtMost,
    AtLeast,
};

/// One comparison. A rule's limit of 0 or less is none. Picture sizes compare two values at
/// once, and only where the rule limits both.
template <class Rule, class Source>
struct Comparison {
    Bound bound;
    const char *field; ///< the rule's field
    int Rule::*limit;
    int Source::*value;
    const char *secondField = nullptr;
    int Rule::*secondLimit = nullptr;
    int Source::*secondValue = nullptr;
    int Rule::*tolerance = nullptr; ///< above 0: the values must lie this close to the limits
};

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
    }
    return false;
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
    if (row.bound == Bound::NotWithin) return true;
    return rule.*row.limit > 0 && (!row.secondLimit || rule.*row.secondLimit > 0);
}

/// Whether the source is on the right side of the rule's limit.
template <class Rule, class Source>
[[gnu::always_inline]] constexpr bool holds(const Comparison<Rule, Source> &row, const Rule &rule,
                                            const Source &source)
{
    if (!isLimited(row, rule)) return true;
    if (!row.secondLimit) return keepsBound(row.bound, source.*row.value, rule.*row.limit);
    if (const int tolerance = rule.*row.tolerance; tolerance > 0)
        return isClose(source.*row.value, rule.*row.limit, tolerance) &&
               isClose(source.*row.secondValue, rule.*row.secondLimit, tolerance);
    return keepsBound(row.bound, source.*row.value, rule.*row.limit) &&
           keepsBound(row.bound, source.*row.secondValue, rule.*row.secondLimit);
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
    (std::make_index_sequence<std::size(Table)>{});
    return refusal;
}

template <const auto &Table, class Rule, class Source>
constexpr int findRefusal(const Rule &rule, const Source &source)
{
    return findRefusal<Table>(rule, source, [](const auto &) {});
}

} // namespace vornak

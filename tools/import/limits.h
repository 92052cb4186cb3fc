// What two limits leave in common, and which of them takes all that the other takes.
#pragma once

#include "tools/import/player.h"

#include <limits>
#include <optional>

namespace vornak::tool {

/// Nothing where no value keeps both.
std::optional<Range> intersection(Range one, Range other);
std::optional<PictureLimits> intersection(const PictureLimits &one, const PictureLimits &other);
std::optional<SoundLimits> intersection(const SoundLimits &one, const SoundLimits &other);

/// Whether `outer` takes everything that `inner` takes.
bool contains(Range outer, Range inner);
bool contains(const PictureLimits &outer, const PictureLimits &inner);
bool contains(const SoundLimits &outer, const SoundLimits &inner);

/// A union of limits: what keeps any of them is taken.
template <class Limits>
using Union = std::vector<Limits>;

/// Adds limits to a union, without what others in it take already.
template <class Limits>
void add(Union<Limits> &all, const Limits &limits)
{
    for (const Limits &other : all)
        if (contains(other, limits)) return;
    std::erase_if(all, [&](const Limits &other) { return contains(limits, other); });
    all.push_back(limits);
}

/// What keeps both unions.
template <class Limits>
Union<Limits> intersection(const Union<Limits> &one, const Union<Limits> &other)
{
    Union<Limits> both;
    for (const Limits &left : one)
        for (const Limits &right : other)
            if (const std::optional<Limits> common = intersection(left, right)) add(both, *common);
    return both;
}

} // namespace vornak::tool

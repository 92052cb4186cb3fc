// What two limits leave in common, which of them takes all that the other takes, and the regions
// that several cut out.
#pragma once

#include "tools/import/player.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

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

/// Regions beyond that many are left out, which costs files of a smaller region what only the
/// other limits would take of them.
inline constexpr std::size_t kMostRegions = 400;

/// The limits and what they have in common, each before all that contain it.
template <class Limits>
std::vector<Limits> regionsOf(const std::vector<Limits> &all)
{
    std::vector<Limits> regions;
    const auto addNew = [&](const Limits &region) {
        if (std::ranges::find(regions, region) == regions.end()) regions.push_back(region);
    };
    for (const Limits &limits : all) addNew(limits);
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = 0; j < regions.size() && regions.size() < kMostRegions; ++j)
            if (const auto common = intersection(all[i], regions[j])) addNew(*common);
    const auto containing = [&](const Limits &region) {
        return std::ranges::count_if(
            all, [&](const Limits &limits) { return contains(limits, region); });
    };
    std::ranges::stable_sort(regions, std::ranges::greater{}, containing);
    return regions;
}

} // namespace vornak::tool

// The first rule that fits a file is taken, and no later one is looked at. So where limits overlap,
// what they have in common gets a rule of its own before them.
#pragma once

#include "tools/import/limits.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace vornak::tool {

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

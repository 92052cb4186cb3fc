// What two limits leave in common, which of them takes all that the other takes, and the regions
// that several cut out.
#pragma once

#include "tools/import/player.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace vornak::tool {

/// What keeps both; nothing where no value does.
std::optional<Limits> intersection(const Limits &one, const Limits &other);

/// Whether `outer` takes everything that `inner` takes.
bool contains(Range outer, Range inner);
bool contains(Range outer, int value);
bool contains(const Limits &outer, const Limits &inner);

/// A union of limits: what keeps any of them is taken.
using Union = std::vector<Limits>;

/// Adds limits to a union, without what others in it take already.
void add(Union &all, const Limits &limits);

/// What keeps both unions.
Union intersection(const Union &one, const Union &other);

/// Regions beyond that many are left out, which costs files of a smaller region what only the
/// other limits would take of them.
inline constexpr std::size_t kMostRegions = 400;

/// The limits and what they have in common, each once and before all that contain it.
std::vector<Limits> regionsOf(const std::vector<Limits> &all);

} // namespace vornak::tool

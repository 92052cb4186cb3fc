// Whose decision changes from one profile to another, and why.
#pragma once

#include "tools/collection/matrix.h"

#include <cstddef>
#include <vector>

namespace vornak::tool {

/// Prints each file whose decision changes, and the sum. Returns how many files they are.
/// @param both  the profile before and the one after
std::size_t diffDecisions(const std::vector<MatrixColumn> &both, const MediaNames &media);

} // namespace vornak::tool

// Whose decision changes from one profile to another, and why.
#pragma once

#include "tools/collection/matrix.h"

#include <vector>

namespace vornak::tool {

/// Prints each file whose decision changes, and the sum. False: some does, or can't be read.
/// @param both  the profile before and the one after
bool areDecidedAlike(const std::vector<MatrixColumn> &both, const MediaNames &media);

} // namespace vornak::tool

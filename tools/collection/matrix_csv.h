// The matrix as comma-separated values: a line a file, a column a player.
#pragma once

#include "tools/collection/matrix.h"

#include <string>
#include <vector>

namespace vornak::tool {

std::string csvHead(const std::vector<MatrixColumn> &columns);
std::string csvRow(const std::string &path, const MatrixResults &results);

} // namespace vornak::tool

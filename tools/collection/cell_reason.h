// The one reason of each cell of the matrix, and which reasons cost most.
#pragma once

#include "tools/collection/matrix.h"

#include <optional>
#include <string>
#include <vector>

namespace vornak::tool {

/// By column; none where the profile can't be loaded. Any thread.
using CellReasons = std::vector<std::optional<MainReason>>;
CellReasons reasonsOf(const MatrixResults &results, const std::vector<MatrixColumn> &columns,
                      const DecisionRequest &request);

/// Counts them for each player.
void count(const CellReasons &reasons, MatrixTotals &totals);

/// A line for each reason of each player, the most frequent first.
std::string reasonLines(const MatrixTotals &totals, const std::vector<MatrixColumn> &columns);

} // namespace vornak::tool

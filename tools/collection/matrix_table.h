// The matrix as a table: a letter for each cell, in the columns of the profiles, and the file.
#pragma once

#include "tools/collection/matrix.h"

#include <string>
#include <vector>

namespace vornak::tool {

/// What stands for an outcome.
char letterOf(Outcome outcome);

class MatrixTable {
public:
    /// @param width  characters of a line that a name may not exceed; 0: no matter how many
    MatrixTable(const std::vector<MatrixColumn> &columns, std::size_t width);

    /// The names of the profiles, each with a line that leads down to its column.
    std::string head() const;

    /// A file's line. Any thread.
    std::string row(const std::string &path, const MatrixResults &results) const;

    /// How many files each player has of each outcome.
    std::string sums(const MatrixTotals &totals) const;

private:
    std::string cut(std::string text, std::size_t room) const;

    const std::vector<MatrixColumn> &columns_;
    std::size_t width_;
    std::string gap_; ///< between the cells
};

} // namespace vornak::tool

// The matrix as a page of HTML that needs nothing but itself: what is read without scripts, and the
// JSON document for the script in it. docs/collections.md shows it.
#pragma once

#include "tools/collection/matrix_json.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// How each page begins, by which a file is known as one.
std::string_view pageStart();

class MatrixPage {
public:
    MatrixPage(const std::vector<MatrixColumn> &columns, const DecisionRequest &request);

    /// Up to 2,000 files have a line each; of more, those share one that all players treat alike.
    void add(const MatrixRow &row);

    /// The whole page.
    std::string text(const MatrixTotals &totals);

private:
    struct CountedReason {
        std::size_t column;
        MainReason reason;
        std::size_t files = 0;
        std::size_t number = 0; ///< on the page, from 1; 0: of files that are kept
    };
    using Cells = std::vector<std::optional<std::size_t>>; ///< places in reasons_, by column

    struct Line {
        std::string path;
        Cells cells;
        std::string json;                ///< of this file
        std::vector<std::string> others; ///< files that have the same cells
    };

    std::size_t placeOf(std::size_t column, const MainReason &reason);
    Cells countCells(const MatrixRow &row);
    void addToGroup(Line line);
    std::vector<const CountedReason *> numberReasons();
    std::string players(const MatrixTotals &totals) const;
    std::string reasons(const std::vector<const CountedReason *> &sorted) const;
    std::string cell(const std::optional<std::size_t> &place) const;
    std::string cells() const;
    std::string document(const MatrixTotals &totals);

    const std::vector<MatrixColumn> &columns_;
    MatrixJson json_;
    std::string head_; ///< of the document
    std::vector<CountedReason> reasons_;
    std::map<std::string, std::size_t> places_; ///< in reasons_, by what tells them apart
    std::vector<Line> lines_;
    std::map<Cells, std::size_t> groups_; ///< the lines, once files share them
    std::size_t files_ = 0;
};

} // namespace vornak::tool

// Decisions kept as text, one line a cell, to be compared with what is decided later.
// docs/collections.md describes it.
#pragma once

#include "tools/collection/matrix.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vornak::tool {

/// A cell as it is written, its texts printable.
struct ExpectedCell {
    std::string profile, file, outcome;
    std::vector<std::string> facts = {}; ///< decide's lines, "audio: keep: rule 0 (aac, line 4) …"
};

ExpectedCell cellOf(const MatrixColumn &column, const std::string &path, const FileResult &result,
                    const DecisionRequest &request);

/// How each expectation begins, of whatever version.
std::string_view expectationStart();

/// The first line of an expectation, and one of a cell.
std::string expectationHead();
std::string lineOf(const ExpectedCell &cell);

/// What changed from one to the other and why, in lines; empty: nothing that a player would notice.
/// Where the rules stand doesn't count.
std::string changeText(const ExpectedCell &was, const ExpectedCell &now);

/// What was saved, compared with what comes.
class Expectation {
public:
    /// Throws std::runtime_error with the place of a line that is none.
    explicit Expectation(const std::string &path);

    /// What is other than expected of this cell, in lines.
    std::string compare(const ExpectedCell &now);

    /// What is missing, and the sum.
    std::string end() const;

    /// Whether all was as expected; after the last cell.
    bool isMet() const { return changed_ + added_ == 0 && seen_ == cells_.size(); }

private:
    struct Known {
        ExpectedCell cell;
        bool isSeen = false;
    };

    std::vector<Known> cells_;
    std::unordered_map<std::string, std::size_t> places_; ///< by profile and file
    std::size_t seen_ = 0, compared_ = 0, changed_ = 0, added_ = 0;
};

} // namespace vornak::tool

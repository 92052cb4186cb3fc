// The matrix as a JSON document, written piece by piece. Each text stands once, at its end.
// docs/collections.md describes it.
#pragma once

#include "tools/collection/matrix.h"
#include "tools/decide/decision_text.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace vornak::tool {

/// Why a cell is as it is. Of an undecided file, `lines` is one that says it.
struct CellWhy {
    MainReason reason;
    std::vector<ShownLine> lines;
    std::vector<VisitedRules> visited;
};

/// A file with all its cells.
struct MatrixRow {
    std::string path, source; ///< no source: it is unreadable
    std::vector<std::optional<CellWhy>> cells;
};

/// Any thread.
MatrixRow explainRow(const SeenFile &file, const MatrixResults &results,
                     const std::vector<MatrixColumn> &columns, const DecisionRequest &request);

void count(const MatrixRow &row, MatrixTotals &totals);

/// Parts of a document, each once, by their numbers from 0.
class NumberedParts {
public:
    /// @param key   by which the part is known
    /// @param json  what it is as JSON, called for a new one
    template <class MakeJson>
    std::size_t numberOf(const std::string &key, MakeJson json)
    {
        const auto found = numbers_.find(key);
        if (found != numbers_.end()) return found->second;
        numbers_.emplace(key, parts_.size());
        parts_.push_back(json());
        return parts_.size() - 1;
    }

    /// A list of JSON with a line for each.
    std::string list() const;

private:
    std::unordered_map<std::string, std::size_t> numbers_;
    std::vector<std::string> parts_; ///< by number
};

class MatrixJson {
public:
    explicit MatrixJson(const std::vector<MatrixColumn> &columns) : columns_(columns) {}

    std::string head(const DecisionRequest &request) const;
    std::string row(const MatrixRow &row);
    std::string tail(const MatrixTotals &totals);

private:
    std::size_t numberOf(const ShownLine &line);
    std::size_t numberOf(const VisitedRules &walk);
    std::size_t numberOf(const CellWhy &why);

    const std::vector<MatrixColumn> &columns_;
    NumberedParts texts_, walks_, whys_;
    std::string key_; ///< kept for its memory
    bool hasRows_ = false;
};

} // namespace vornak::tool

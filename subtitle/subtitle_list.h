// The list of subtitle files that a caller provides and a scan of the video's folder fills.
#pragma once

#include "include/vornak.h"

#include <string_view>

namespace vornak {

/// Fills VORNAK_SUBTITLE_LIST_SIZE records from the front. Only the text of a field and its NUL
/// are written: the rest of the caller's memory stays as it was.
class SubtitleList {
public:
    SubtitleList(VIDEO_SUBTITLE_ST *records, std::string_view folder)
        : records_(records), folder_(folder)
    {}

    /// Adds a record for each of `kinds`, a table with an end row, that the file is of.
    /// @param name  begins with the video's stem, which has `stemLength` characters
    void addMatches(std::string_view name, std::size_t stemLength, const VIDEO_SUBTITLE_ST *kinds);

    /// Whether the last record is all that is left.
    bool isFull() const { return count_ == VORNAK_SUBTITLE_LIST_SIZE - 1; }

    /// Ends the list behind the records found.
    void end();

    /// Gives all that was added up again: the records hold what they held before.
    void undo();

private:
    void add(const VIDEO_SUBTITLE_ST &kind, std::string_view name, std::string_view language);

    VIDEO_SUBTITLE_ST *records_;
    std::string_view folder_;
    int count_ = 0;
    VIDEO_SUBTITLE_ST before_[VORNAK_SUBTITLE_LIST_SIZE - 1]; // of the records added
};

} // namespace vornak

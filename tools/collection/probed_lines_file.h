// A file of probed lines that is made anew of what it holds. What a killed run has made lies beside
// it and counts as well.
#pragma once

#include "base/descriptor.h"
#include "tools/files/output_place.h"
#include "tools/probe/probed_line.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vornak::tool {

/**
 * The new lines go to FILE.part, which takes the file's place when all are there; as long as they
 * are those that the file begins with, none is written. Throws std::runtime_error with a line for
 * the user: for a file that holds something else, one that can't be written, or one that another
 * process is about.
 */
class ProbedLinesFile {
public:
    explicit ProbedLinesFile(const std::string &path);

    /// The line of a file in this state, by the part that filePart() makes, or null. Quick where
    /// they are asked for in the order that they have.
    const LineParts *find(std::string_view filePart);

    /// Adds a line with its end. @param isNew  it took work, so it is on the disk soon
    void add(std::string_view line, bool isNew);

    /// All lines are there: they take the file's place.
    void finish();

private:
    std::string nameWith(std::string_view ending) const;
    void lock();
    void keepPart();
    void learn(const std::string &text);
    void leaveOldLines();
    void flush();
    [[noreturn]] void fail(const std::string &name) const;

    OutputPlace place_;
    std::optional<Descriptor> part_;
    std::string old_;      ///< the file as it is
    std::string leftover_; ///< lines that killed runs have made
    std::vector<LineParts> lines_;
    std::size_t expected_ = 0; ///< of them, the one that is likely to be asked for next
    std::unordered_map<std::string_view, std::size_t> places_; ///< by the first parts, once needed
    std::optional<std::size_t> same_; ///< bytes of the file that are to stay; none: it is left
    std::string pending_;             ///< to be written
};

} // namespace vornak::tool

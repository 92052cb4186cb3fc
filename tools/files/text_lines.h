// The lines of a file that somebody else may have written, read one by one.
#pragma once

#include <cstddef>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace vornak::tool {

class TextLines {
public:
    /// @param path  "-" is standard input. Throws std::system_error.
    explicit TextLines(const std::string &path);

    /// False at the end. Throws std::runtime_error for a line that is longer than any of the
    /// tool's, so that memory doesn't grow with it.
    bool next(std::string &line);

    std::size_t number() const { return number_; } ///< of the line that was read last, from 1
    bool isCut() const { return isCut_; }          ///< it has no end

    /// Throws std::runtime_error, "FILE:LINE: WHY".
    [[noreturn]] void refuse(std::size_t line, std::string_view why) const;

private:
    std::istream &stream();

    std::string title_;
    std::ifstream file_; ///< not open: standard input
    std::unique_ptr<char[]> buffer_;
    std::size_t number_ = 0;
    bool isCut_ = false;
};

} // namespace vornak::tool

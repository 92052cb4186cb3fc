// A file of text that was written by others, read whole and with its lines.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vornak::tool {

/// What is wrong with a file that is imported: one line that names the place.
class ImportError : public std::runtime_error {
public:
    ImportError(std::string_view path, int line, std::string_view reason);
};

/// The content; throws ImportError for what can't be read, is no regular file, or is larger than
/// any profile.
std::string readTextFile(const std::string &path);

} // namespace vornak::tool

// A profile's file, which somebody else wrote: read whole, and what is wrong with it.
#pragma once

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vornak::tool {

/// Why a profile can't be loaded: one line of text that names the file, and its line if any.
class ProfileError : public std::runtime_error {
public:
    ProfileError(std::string_view title, int line, std::string_view reason);

    int line() const { return line_; } ///< 0: of the file as a whole

private:
    int line_;
};

/// What the file holds. Throws ProfileError, with that title, for what can't be read, is no regular
/// file, or is larger than `most` bytes.
std::string readRegularFile(const std::string &path, const std::string &title,
                            std::size_t most = std::numeric_limits<std::size_t>::max());

} // namespace vornak::tool

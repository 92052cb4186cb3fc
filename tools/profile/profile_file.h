// Where a profile is read from: "-" is standard input, "./-" a file of that name.
#pragma once

#include "base/descriptor.h"

#include <string>
#include <string_view>

namespace vornak::tool {

/// A path to open the profile at, as often as one likes: what comes on standard input is read to
/// its end by the first call, and kept in memory. Before the first thread starts. Throws
/// std::system_error.
std::string profilePath(const std::string &name);

/// A text as a file that has no name.
class ProfileInMemory {
public:
    /// Throws std::system_error.
    explicit ProfileInMemory(std::string_view text);

    /// To open it at, as long as this lives.
    std::string path() const { return "/proc/self/fd/" + std::to_string(memory_.get()); }

private:
    Descriptor memory_;
};

/// What the profile is called in messages.
std::string profileTitle(const std::string &name);

} // namespace vornak::tool

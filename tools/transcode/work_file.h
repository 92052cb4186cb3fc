// A file in the making, in a private folder of its own until it is complete.
#pragma once

#include <string>

namespace vornak::tool {

class WorkFile {
public:
    /// Makes the folder beside where the file is to be. Throws a line for the user.
    explicit WorkFile(const std::string &folder);
    ~WorkFile(); ///< removes both
    WorkFile(const WorkFile &) = delete;
    WorkFile &operator=(const WorkFile &) = delete;

    /// The name to write to; there is no such file yet.
    const std::string &path() const { return path_; }

    /// Moves the file to its place, in the folder that the private one lies in. Throws a line for
    /// the user. @param replace  whatever is there
    void moveTo(const std::string &target, bool replace);

private:
    std::string folder_, path_;
};

/// Where an output goes: throws a line for the user if something is there already that may not be
/// replaced, or can't be. A link is followed to the file behind it.
std::string outputPlace(const std::string &path, bool replace);

} // namespace vornak::tool

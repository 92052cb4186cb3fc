// A file in the making, in a private folder of its own until it is whole.
#pragma once

#include "base/descriptor.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace vornak::tool {

class OutputPlace;

/// What keeps a file from being written; a line for the user.
struct WriteError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/**
 * The private folder is reached by its descriptor and never by its name again, which somebody
 * else may have given to another. It is locked as long as the file is in the making; what a killed
 * run has left unlocked is removed by the next in the same place. Throws WriteError.
 */
class WorkFile {
public:
    static constexpr std::string_view kName = "output"; ///< in the private folder

    /// @param folder  where the private one is made: an open folder
    explicit WorkFile(int folder);
    ~WorkFile(); ///< removes all that is left
    WorkFile(const WorkFile &) = delete;
    WorkFile &operator=(const WorkFile &) = delete;

    /// The private folder, to hand on to whoever writes the file.
    int folder() const { return private_.get(); }

    /// The file's name for this process.
    std::string path() const;

    /// Whether anything has been written.
    bool isEmpty() const;

    /// Moves the file to its place, in the folder that the private one lies in. It is on the disk
    /// before its name is, and so is the name at the end.
    void moveTo(const OutputPlace &place) const;

private:
    int around_;
    std::string name_; ///< of the private folder
    Descriptor private_;
};

} // namespace vornak::tool

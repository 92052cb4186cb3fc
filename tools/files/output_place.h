// Where an output goes: a name in a folder that is held open, so that nobody can put another folder
// in its place meanwhile.
#pragma once

#include "base/descriptor.h"

#include <optional>
#include <string>
#include <string_view>

namespace vornak::tool {

class OutputPlace {
public:
    /// Follows links from `path` to where the output goes. Throws a line for the user where it
    /// can't go: into no folder, or over what is no regular file or may not be replaced.
    OutputPlace(const std::string &path, bool replace);

    const std::string &path() const { return path_; } ///< as the user gave it
    int folder() const { return folder_->get(); }
    const std::string &name() const { return name_; }
    bool replaces() const { return replaces_; }

    /// Throws a line for the user where there is a file that begins otherwise; an empty one
    /// doesn't.
    /// @param what  begins like that, such as "a page of vornak matrix"
    void refuseOther(std::string_view start, std::string_view what) const;

private:
    bool isLink() const;
    void followLink();
    void open(const std::string &path);
    void refuseWhatIsThere(bool wasLink) const;

    std::string path_, name_;
    bool replaces_;
    std::optional<Descriptor> folder_;
};

} // namespace vornak::tool

// Which names of subtitle files the folder holds that was asked about last: a folder of films is
// read once, not for each of them.
#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

class LastFolder {
public:
    /// False only if no subtitle file in `folder` has a name that begins with `stem`.
    bool mayHold(const std::string &folder, std::string_view stem);

private:
    bool isUnchanged(const std::string &folder);
    void read(const std::string &folder);

    std::string path_;
    std::timespec changed_{};
    std::vector<std::string> names_; ///< sorted
    bool isKnown_ = false;           ///< all names are there
};

} // namespace vornak::tool

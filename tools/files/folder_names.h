// The names in a folder, read once and found by how they begin.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace vornak::tool {

/// The names in a folder that somebody wants, as they were when it was read. About as large as
/// they are.
class FolderNames {
public:
    using IsWanted = bool (*)(std::string_view name);

    FolderNames(const std::string &folder, IsWanted isWanted);

    /// The errno with which reading the folder failed; 0: all names are there.
    int error() const { return error_; }

    /// Those that begin with `start`, in the folder's own order; they live as long as this.
    std::vector<std::string_view> beginningWith(std::string_view start) const;

    std::size_t bytes() const { return text_.capacity() + byName_.capacity() * sizeof(Place); }

private:
    using Place = std::size_t; ///< of a name in the text, and so in the folder's own order

    std::string_view nameAt(Place place) const { return text_.data() + place; }

    std::string text_; ///< the names one after the other, each with a NUL
    std::vector<Place> byName_;
    int error_ = 0;
};

/// The folders that were asked about last, so that each is read once and not for each of its
/// files, also where a list names those of several folders in turns. Any thread.
class RecentFolders {
public:
    explicit RecentFolders(FolderNames::IsWanted isWanted) : isWanted_(isWanted) {}

    /// The names in `folder`, which is read again after it has changed.
    std::shared_ptr<const FolderNames> find(const std::string &folder);

private:
    struct Known {
        struct stat status; ///< from before it was read
        std::shared_ptr<const FolderNames> names;
    };

    void dropOld();

    FolderNames::IsWanted isWanted_;
    std::mutex mutex_;
    std::vector<Known> known_; ///< the one asked about last at the end
};

} // namespace vornak::tool

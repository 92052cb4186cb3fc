// Which media files the arguments of a subcommand name, one after the other.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornak {
class Directory;
}

namespace vornak::tool {

struct MediaItem {
    std::string path;
    std::string error;                            ///< why it can't be opened; empty: it is a file
    std::shared_ptr<const Directory> folder = {}; ///< its own, where the path is too long to open

    /// A path that the system takes, as long as this lives.
    std::string openablePath() const;
};

/// Whether a file is called as audio and video files are.
bool hasMediaName(std::string_view name);

/// What a user named.
struct MediaNames {
    std::vector<std::string> arguments;
    bool endInNull = false;  ///< those of a list, which else are its lines
    std::string probed = {}; ///< a file of lines that stand in for the media; empty: none
};

/**
 * Walks files, folders and a list of names. A folder is walked with all that lies below it, in
 * the byte order of the paths, also where those get longer than the system takes. Links to folders
 * in it are not followed; what is no media by its name is skipped and counted; and what other
 * programs put there is left out. "-" stands for the names on `list`. Only the folders that lead
 * to the current file are held in memory. One thread at a time.
 */
class MediaList {
public:
    using IsWanted = bool (*)(std::string_view name);

    /// @param isWanted  whether a file in a folder is one, by its name
    MediaList(MediaNames names, std::istream &list, IsWanted isWanted = hasMediaName);

    /// The next file, or none at the end.
    std::optional<MediaItem> next();

    std::size_t skipped() const { return skipped_; }

private:
    struct Folder {
        std::string path;                      ///< ends in '/'
        std::shared_ptr<const Directory> open; ///< null: all paths in it are short enough
        std::vector<std::string> names;        ///< the next one last; those of folders end in '/'
    };

    std::optional<std::string> nextName();
    std::optional<MediaItem> takeNamed(std::string path);
    std::optional<MediaItem> takeFromFolder();
    std::shared_ptr<Directory> open(const std::string &path) const;
    std::optional<MediaItem> enter(std::string path);

    MediaNames names_; ///< the next argument last
    std::istream &list_;
    IsWanted isWanted_;
    bool readsList_ = false;
    std::vector<Folder> folders_;
    std::size_t skipped_ = 0;
};

} // namespace vornak::tool

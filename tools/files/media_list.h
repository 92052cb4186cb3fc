// Which media files the arguments of a subcommand name, one after the other.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

struct MediaItem {
    std::string path;
    std::string error; ///< why it can't be opened; empty: it is a file
};

/**
 * Walks files, folders and a list of names. A folder is walked with all that lies below it, in
 * the byte order of the paths; links to folders in it are not followed, and what is no media by
 * its name is skipped and counted. "-" stands for the names on `names`, one a line. Only the
 * folders that lead to the current file are held in memory. One thread at a time.
 */
class MediaList {
public:
    MediaList(std::vector<std::string> arguments, std::istream &names);

    /// The next file, or none at the end.
    std::optional<MediaItem> next();

    std::size_t skipped() const { return skipped_; }

private:
    struct Folder {
        std::string path;               ///< ends in '/'
        std::vector<std::string> names; ///< the next one last; those of folders end in '/'
    };

    std::optional<std::string> nextName();
    std::optional<MediaItem> takeNamed(std::string path);
    std::optional<MediaItem> takeFromFolder();
    std::optional<MediaItem> enter(std::string path);

    std::vector<std::string> arguments_; ///< the next one last
    std::istream &names_;
    bool readsNames_ = false;
    std::vector<Folder> folders_;
    std::size_t skipped_ = 0;
};

/// Whether a file is called as audio and video files are.
bool hasMediaName(std::string_view name);

} // namespace vornak::tool

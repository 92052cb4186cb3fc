// The names in a directory, in the order in which the file system gives them.
#pragma once

#include <cerrno>
#include <dirent.h>

namespace vornak {

/// Owns an open directory; opendir() closes it on exec.
class Directory {
public:
    explicit Directory(const char *path)
    {
        do stream_ = opendir(path);
        while (!stream_ && errno == EINTR);
    }
    ~Directory()
    {
        if (stream_) closedir(stream_);
    }
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    bool isOpen() const { return stream_ != nullptr; }

    /// The next entry's name, valid until the next call; null at the end.
    const char *next()
    {
        const dirent *entry = readdir(stream_);
        return entry ? entry->d_name : nullptr;
    }

private:
    DIR *stream_;
};

} // namespace vornak

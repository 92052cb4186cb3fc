// The names in a directory, in the order in which the file system gives them.
#pragma once

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace vornak {

/// Owns an open directory; opendir() closes it on exec.
class Directory {
public:
    explicit Directory(const char *path)
    {
        do stream_ = opendir(path);
        while (!stream_ && errno == EINTR);
    }
    /// One that lies in `parent`, whose path may be too long for the system.
    Directory(const Directory &parent, const char *name)
    {
        int opened = -1;
        do opened = openat(parent.descriptor(), name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        while (opened < 0 && errno == EINTR);
        stream_ = opened < 0 ? nullptr : fdopendir(opened);
        if (!stream_ && opened >= 0) close(opened);
    }
    ~Directory()
    {
        if (stream_) closedir(stream_);
    }
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    bool isOpen() const { return stream_ != nullptr; }
    int descriptor() const { return dirfd(stream_); }

    /// The next entry's name, valid until the next call; null at the end, and where reading fails.
    const char *next()
    {
        const dirent *entry = nextEntry();
        return entry ? entry->d_name : nullptr;
    }

    /// The same with what the file system says of it.
    const dirent *nextEntry()
    {
        const int before = errno;
        const dirent *entry = nullptr;
        do {
            errno = 0; // all that tells a failure from the end
            entry = readdir(stream_);
        } while (!entry && errno == EINTR);
        error_ = entry ? 0 : errno;
        if (error_ == 0) errno = before;
        return entry;
    }

    /// The errno with which reading failed, so that names may be missing; 0: it has not.
    int error() const { return error_; }

private:
    DIR *stream_;
    int error_ = 0;
};

} // namespace vornak

#include "tools/files/output_place.h"

#include "tools/terminal/printable.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

[[noreturn]] void refuse(const std::string &path, std::string_view why)
{
    throw std::runtime_error(fmt::format("{}: {}", printable(path), why));
}

[[noreturn]] void refuse(const std::string &path, int error)
{
    refuse(path, std::generic_category().message(error));
}

/// Whether somebody beside the user and root can put links into a folder.
bool isWrittenByOthers(const struct stat &folder)
{
    return (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0 ||
           (folder.st_uid != geteuid() && folder.st_uid != 0);
}

} // namespace

OutputPlace::OutputPlace(const std::string &path, bool replace) : path_(path), replaces_(replace)
{
    constexpr int kMostLinks = 40; // as the kernel has it
    open(path);
    int links = 0;
    for (; replace && isLink(); ++links) {
        if (links == kMostLinks) refuse(path, ELOOP);
        followLink();
    }
    refuseWhatIsThere(links > 0);
}

void OutputPlace::open(const std::string &path)
{
    const std::filesystem::path whole(path);
    const std::string parent = whole.has_parent_path() ? whole.parent_path() : ".";
    name_ = whole.filename();
    const int from = folder_ ? folder() : AT_FDCWD;
    const int opened = openat(from, parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0)
        throw std::runtime_error(fmt::format("can't write into {}: {}", printable(parent),
                                             std::generic_category().message(errno)));
    folder_.emplace(opened);
    if (name_.empty()) refuse(path_, EISDIR);
}

void OutputPlace::refuseOther(std::string_view start, std::string_view what) const
{
    std::string there(start.size(), '\0');
    const Descriptor file(openat(folder(), name_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    const ssize_t got = file ? read(file.get(), there.data(), there.size()) : 0;
    if (got > 0 && there.substr(0, static_cast<std::size_t>(got)) != start)
        refuse(path_, fmt::format("holds something else than {}, so it is not replaced", what));
}

bool OutputPlace::isLink() const
{
    struct stat info = {};
    return fstatat(folder(), name_.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(info.st_mode);
}

// The kernel looks after links in sticky folders alone, and not everywhere. The link is held, or
// the one that is followed need not be the one whose owner is asked.
void OutputPlace::followLink()
{
    const Descriptor held(openat(folder(), name_.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat link = {}, around = {};
    char target[PATH_MAX];
    if (!held || fstat(held.get(), &link) != 0 || fstat(folder(), &around) != 0)
        refuse(path_, errno);
    const ssize_t size = readlinkat(held.get(), "", target, sizeof target);
    if (size < 0) refuse(path_, errno);
    if (link.st_uid != geteuid() && isWrittenByOthers(around))
        refuse(path_, "leads through a link that another user has made, and is not replaced");
    open({target, static_cast<std::size_t>(size)});
}

void OutputPlace::refuseWhatIsThere(bool wasLink) const
{
    struct stat info = {};
    if (fstatat(folder(), name_.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT && !wasLink) return;
        refuse(path_, errno);
    }
    if (!replaces_) refuse(path_, "exists already and is kept; --force replaces it");
    if (!S_ISREG(info.st_mode)) refuse(path_, "is no regular file, so it can't be replaced");
}

} // namespace vornak::tool

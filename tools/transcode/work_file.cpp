#include "tools/transcode/work_file.h"

#include "tools/files/output_place.h"
#include "tools/terminal/printable.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::string_view kPrefix = ".vornak-";
constexpr std::string_view kTemplate = ".vornak-XXXXXX";
constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
constexpr const char *kFile = WorkFile::kName.data();

[[noreturn]] void fail(std::string_view what, int error)
{
    throw WriteError(fmt::format("{}: {}", what, std::generic_category().message(error)));
}

std::string pathOf(int descriptor)
{
    return fmt::format("/proc/self/fd/{}", descriptor);
}

int openFolder(int around, const char *name)
{
    return openat(around, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

/// Calls `take` with the name of each entry.
template <class Take>
void forEachEntry(int folder, Take take)
{
    const int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, CloseFolder> entries(own < 0 ? nullptr : fdopendir(own));
    if (!entries) return;
    while (const dirent *entry = readdir(entries.get())) take(entry->d_name);
}

// A stranger may have given this name to another folder of the user's, so nothing goes but what a
// work file leaves.
void removeLeftover(int around, const char *name)
{
    const Descriptor left(openFolder(around, name));
    struct stat info = {};
    if (!left || fstat(left.get(), &info) != 0 || info.st_uid != geteuid() ||
        (info.st_mode & kOthers) != 0 || flock(left.get(), LOCK_EX | LOCK_NB) != 0)
        return;
    unlinkat(left.get(), kFile, 0);
    unlinkat(around, name, AT_REMOVEDIR);
}

void removeLeftovers(int around)
{
    forEachEntry(around, [around](const std::string &name) {
        if (name.starts_with(kPrefix) && name.size() == kTemplate.size())
            removeLeftover(around, name.c_str());
    });
}

/// Whether a folder is the one that was made just now, and not another that has got its name since.
/// Where the file system keeps no owners or modes of its own, a new file has the folder's, too.
bool isPrivate(int folder)
{
    const Descriptor file(openat(folder, kFile, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR));
    struct stat inside = {}, info = {};
    if (!file || fstat(file.get(), &inside) != 0 || fstat(folder, &info) != 0) return false;
    unlinkat(folder, kFile, 0);
    return info.st_uid == inside.st_uid &&
           ((info.st_mode & kOthers) == 0 || (inside.st_mode & kOthers) != 0);
}

/// Whether a new folder is there and ours for as long as it is open.
bool claim(int folder)
{
    struct stat info = {};
    if (!isPrivate(folder)) return false;
    if (flock(folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    return fstat(folder, &info) == 0 && info.st_nlink > 0;
}

/// Makes a private folder and opens it.
int makePrivate(int around, std::string &name)
{
    constexpr int kTries = 10; // another run may take it for a leftover before it is locked
    removeLeftovers(around);
    for (int i = 0; i < kTries; ++i) {
        std::string path = fmt::format("{}/{}", pathOf(around), kTemplate);
        if (!mkdtemp(path.data())) break;
        name = path.substr(path.rfind('/') + 1);
        const int opened = openFolder(around, name.c_str());
        if (opened >= 0 && claim(opened)) return opened;
        close(opened);
    }
    const int error = errno;
    fail("can't write into " + printable(std::filesystem::read_symlink(pathOf(around)).string()),
         error);
}

void sync(int descriptor, const OutputPlace &place)
{
    // EINVAL: this kind of file is never kept back
    if (fsync(descriptor) != 0 && errno != EINVAL) fail(printable(place.path()), errno);
}

/// Replaces nothing, also where the file system has no move that doesn't.
void moveToFreeName(int from, const OutputPlace &place)
{
    const char *to = place.name().c_str();
    if (renameat2(from, kFile, place.folder(), to, RENAME_NOREPLACE) == 0) return;
    if (errno != EINVAL && errno != ENOSYS) fail(printable(place.path()), errno);
    if (linkat(from, kFile, place.folder(), to, 0) == 0) return;
    if (errno == EEXIST) fail(printable(place.path()), errno);
    throw WriteError(printable(place.path()) +
                     ": its file system can't move a file there without "
                     "replacing what may be there by then (--force does)");
}

void moveOver(int from, const OutputPlace &place)
{
    if (renameat(from, kFile, place.folder(), place.name().c_str()) != 0)
        fail(printable(place.path()), errno);
}

/// A name that may not last is taken away again, unless it was another file's: that is gone.
void syncName(const OutputPlace &place)
try {
    sync(place.folder(), place);
} catch (const WriteError &) {
    if (!place.replaces()) unlinkat(place.folder(), place.name().c_str(), 0);
    throw;
}

} // namespace

WorkFile::WorkFile(int folder) : around_(folder), private_(makePrivate(folder, name_))
{}

WorkFile::~WorkFile()
{
    forEachEntry(folder(), [this](const char *name) { unlinkat(folder(), name, 0); });
    unlinkat(around_, name_.c_str(), AT_REMOVEDIR);
}

std::string WorkFile::path() const
{
    return fmt::format("{}/{}", pathOf(folder()), kName);
}

bool WorkFile::isEmpty() const
{
    struct stat info = {};
    return fstatat(folder(), kFile, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(info.st_mode) ||
           info.st_size == 0;
}

void WorkFile::moveTo(const OutputPlace &place) const
{
    const Descriptor file(openat(folder(), kFile, O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file) fail(printable(place.path()), errno);
    sync(file.get(), place);
    place.replaces() ? moveOver(folder(), place) : moveToFreeName(folder(), place);
    syncName(place);
}

} // namespace vornak::tool

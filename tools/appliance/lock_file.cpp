#include "tools/appliance/lock_file.h"

#include "base/descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <pwd.h>
#include <semaphore.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr const char *kPath = "/dev/shm/sem.VORNAK_DB_SEM"; // where the C library has it

std::string nameOf(uid_t user)
{
    const passwd *entry = getpwuid(user);
    return entry ? entry->pw_name : fmt::format("user {}", user);
}

[[noreturn]] void fail(const std::string &owner, const std::string &why)
{
    throw std::runtime_error(fmt::format("the lock {}, of {}, {}", kPath, owner, why));
}

/// Whether the C library would take it for a lock of several processes: the words that tell it
/// from one of a single process. Others make a wait for it abort.
bool isShared(const sem_t &lock)
{
    constexpr std::size_t kWords = sizeof(sem_t) / sizeof(unsigned);
    unsigned words[3][kWords] = {};
    sem_t shared = {}, own = {};
    sem_init(&shared, 1, 0);
    sem_init(&own, 0, 0);
    std::memcpy(words[0], &lock, sizeof lock);
    std::memcpy(words[1], &shared, sizeof shared);
    std::memcpy(words[2], &own, sizeof own);
    for (std::size_t i = 0; i < kWords; ++i)
        if (words[1][i] != words[2][i] && words[0][i] != words[1][i]) return false;
    return true;
}

/// Reads the count from a copy, which nobody can cut short.
int readCount(int file, const std::string &owner)
{
    sem_t lock = {};
    int count = -1;
    if (pread(file, &lock, sizeof lock, 0) == sizeof lock) sem_getvalue(&lock, &count);
    if (count < 0 || !isShared(lock))
        fail(owner, "is empty or damaged: remove it while no server runs");
    return count;
}

} // namespace

std::optional<LockFile> lookAtLock()
{
    const Descriptor file(open(kPath, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    const int error = file ? 0 : errno;
    struct stat info = {};
    if ((file ? fstat(file.get(), &info) : lstat(kPath, &info)) != 0) {
        if (errno == ENOENT) return {};
        throw std::system_error(errno, std::generic_category(), kPath);
    }
    const std::string owner = nameOf(info.st_uid);
    if (!S_ISREG(info.st_mode)) fail(owner, "is not a file: remove it while no server runs");
    if (!file) fail(owner, "can't be read: " + std::generic_category().message(error));
    return LockFile{readCount(file.get(), owner), owner, info.st_uid == geteuid(),
                    (info.st_mode & S_IWOTH) != 0};
}

std::string describeOwner(const LockFile &lock)
{
    if (!lock.isOwn)
        return fmt::format("it belongs to {}{}", lock.owner,
                           lock.isOpenToAll ? ", and any user can take it" : "");
    return lock.isOpenToAll ? "any user can take it" : "";
}

} // namespace vornak::tool

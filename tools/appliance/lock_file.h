// The file in which the system keeps the database lock, looked at as a file: taken for a lock, one
// that is cut short or damaged ends the process.
#pragma once

#include <optional>
#include <string>

namespace vornak::tool {

constexpr const char *kLockName = "VORNAK_DB_SEM";

struct LockFile {
    int count;         ///< 0: held, 1: free; more: released too often
    std::string owner; ///< a user's name, or number
    bool isOwn;        ///< the owner is who runs the tool
    bool isOpenToAll;  ///< any user may take and release it
};

/// The lock; none where no process has opened it since the system started. Throws, with a text
/// that says whose it is, where what is there can't be a lock or can't be read.
std::optional<LockFile> lookAtLock();

/// "it belongs to USER, and any user can take it", as far as that needs saying; or nothing.
std::string describeOwner(const LockFile &lock);

} // namespace vornak::tool

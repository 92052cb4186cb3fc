#include "tools/appliance/unmount_all.h"

#include "base/directory.h"
#include "include/vornak_host.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <string>
#include <sys/mount.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vornak::tool {
namespace {

std::vector<std::string> mountPoints()
{
    std::vector<std::string> found;
    Directory tmp("/tmp");
    while (const char *name = tmp.isOpen() ? tmp.next() : nullptr) {
        const std::string path = std::string("/tmp/") + name;
        if (path.starts_with(VORNAK_MOUNT_PREFIX)) found.push_back(path);
    }
    if (!tmp.isOpen() || tmp.error() != 0)
        throw std::system_error(errno, std::generic_category(), "can't read /tmp");
    std::sort(found.begin(), found.end());
    return found;
}

/// Why a name is still there; empty where it is gone, or no concern of the sweep's.
std::string whyLeft(const std::string &path, int unmountError, int removeError)
{
    if (removeError == ENOENT) return {};
    if (removeError == ENOTDIR || removeError == ENOTEMPTY) {
        complain(fmt::format("{}: passed over: nothing is mounted on it, and it is no empty "
                             "directory",
                             printable(path)));
        return {};
    }
    if (unmountError == EPERM) return "left as it is: unmounting needs root";
    if (unmountError == EBUSY)
        return "still mounted: some program uses it (try: fuser -vm " + path + ")";
    return "not removed: " + std::generic_category().message(removeError);
}

/// Anybody may put something else in the place of a name at any moment, but neither call follows
/// a link, and each does nothing to what isn't of its kind.
int sweep(const std::string &path)
{
    bool unmounted = false;
    while (umount2(path.c_str(), UMOUNT_NOFOLLOW) == 0) unmounted = true;
    const int unmountError = errno;
    if (rmdir(path.c_str()) == 0) {
        writeOut(fmt::format("{} {}\n", unmounted ? "unmounted" : "removed", printable(path)));
        return kDone;
    }
    const std::string why = whyLeft(path, unmountError, errno);
    return why.empty() ? kDone : complainOf(path, why);
}

} // namespace

// Not by umountAllIso(), for which the shell looks the names up: that follows links.
int unmountAll()
{
    const std::vector<std::string> found = mountPoints();
    if (found.empty()) writeOut("nothing is mounted\n");
    int status = kDone;
    for (const std::string &path : found) status = std::max(status, sweep(path));
    return status;
}

} // namespace vornak::tool

#include "tools/appliance/unmount_all.h"

#include "include/vornak.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vornak::tool {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> mountPoints()
{
    std::vector<std::string> found;
    for (const auto &entry : fs::directory_iterator("/tmp"))
        if (entry.path().filename().string().starts_with("Trans_mount_"))
            found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

bool isMounted(const std::string &path)
{
    struct stat here = {}, parent = {};
    return stat(path.c_str(), &here) == 0 && stat("/tmp", &parent) == 0 &&
           here.st_dev != parent.st_dev;
}

/// Why the sweep left a mount point; empty when it is gone now. The library removes none while
/// any fails to unmount, as an empty directory does.
std::string whyLeft(const std::string &path)
{
    if (isMounted(path))
        return geteuid() != 0 ? "still mounted: unmounting needs root"
                              : "still mounted: some program uses it (try: fuser -vm " + path + ")";
    if (rmdir(path.c_str()) == 0 || errno == ENOENT) return {};
    return "not removed: " + std::generic_category().message(errno);
}

} // namespace

int unmountAll()
{
    const std::vector<std::string> found = mountPoints();
    // Unmounting follows links, and anybody may make one in /tmp.
    for (const std::string &path : found)
        if (!fs::is_directory(fs::symlink_status(path))) {
            complain(fmt::format("{}: not a directory; nothing is unmounted while it is there",
                                 printable(path)));
            return kIncomplete;
        }
    if (found.empty()) {
        writeOut("nothing is mounted\n");
        return kDone;
    }
    umountAllIso();
    int status = kDone;
    for (const std::string &path : found) {
        const std::string why = whyLeft(path);
        if (why.empty()) {
            writeOut(fmt::format("unmounted {}\n", printable(path)));
            continue;
        }
        status = complainOf(path, why);
    }
    return status;
}

} // namespace vornak::tool

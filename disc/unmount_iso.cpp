#include "disc/in_root.h"
#include "disc/shell_command.h"
#include "include/vornak.h"

namespace vornak {
namespace {

/// Unmounts and removes what the shell makes of a word: one directory, or those of a pattern.
int unmount(const char *word, const char *end = "")
{
    if (runSilently("umount ", word, end) != 0) return 1;
    return runSilently("rmdir ", word, end) == 0 ? 0 : 1;
}

} // namespace
} // namespace vornak

int umountIso(const char *mountPoint)
{
    using namespace vornak;
    if (!mountPoint) return 1;
    ShellName directory;
    if (!directory.set(mountPoint) || !directory.convert()) return 1;
    return unmount(directory.text());
}

int chrootUmountIso(const char *mountPoint, const char *rootDir)
{
    if (!mountPoint) return 1;
    return vornak::runInRoot(rootDir, [&] { return umountIso(mountPoint); });
}

int umountAllIso(void)
{
    return vornak::unmount(VORNAK_MOUNT_PREFIX, "*");
}

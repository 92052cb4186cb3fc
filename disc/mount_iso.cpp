#include "disc/disc_path.h"
#include "disc/in_root.h"
#include "disc/shell_command.h"
#include "include/vornak.h"

namespace vornak {
namespace {

/// Whether a shell takes a path as it stands.
bool isPlain(std::string_view path)
{
    return path.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                  "/._-+,:@") == std::string_view::npos;
}

/// Names a mount point that no other call has; false, with the buffer cleared, when it doesn't fit.
bool nameMountPoint(char *mountPointOut, unsigned size)
{
    std::memset(mountPointOut, 0, size);
    char buffer[VORNAK_MOUNT_POINT_SIZE];
    FixedText name(buffer);
    name.appendCut(VORNAK_MOUNT_PREFIX, Digits(Telmo_getUniqueNumer()), "/"); // always fits
    return FixedText(mountPointOut, size).append(name.view());
}

} // namespace
} // namespace vornak

int mountIsoByPath(const char *isoFolder, const char *isoFileName, const char *mountPoint)
{
    using namespace vornak;
    if (!isoFolder || !isoFileName || !mountPoint) return 1;
    mkdir(mountPoint, 0777); // it may exist
    if (!isDirectory(mountPoint)) return 1;
    ShellName folder, file, directory;
    if (!folder.set(isoFolder) || !file.set(isoFileName)) return 1;
    if (!folder.convert() || !file.convert()) return 1;
    if (isPlain(mountPoint))
        return runSilently("mount -o loop,ro ", folder.text(), file.text(), " ", mountPoint);
    if (!directory.set(mountPoint) || !directory.convert()) return 1;
    return runSilently("mount -o loop,ro ", folder.text(), file.text(), " ", directory.text());
}

int mountIso(const char *isoFolder, const char *isoFileName, char *mountPointOut, unsigned size)
{
    if (!isoFolder || !isoFileName || !mountPointOut) return 1;
    if (!vornak::nameMountPoint(mountPointOut, size)) return 1;
    return mountIsoByPath(isoFolder, isoFileName, mountPointOut) == 0 ? 0 : 1;
}

int chrootMountIsoByPath(const char *isoFolder, const char *isoFileName, const char *mountPoint,
                         const char *rootDir)
{
    if (!isoFolder || !isoFileName || !mountPoint || !rootDir) return 1;
    return vornak::runInRoot(rootDir,
                             [&] { return mountIsoByPath(isoFolder, isoFileName, mountPoint); });
}

int chrootMountIso(const char *isoFolder, const char *isoFileName, char *mountPointOut,
                   unsigned size, const char *rootDir)
{
    if (!isoFolder || !isoFileName || !mountPointOut) return 1;
    if (!vornak::nameMountPoint(mountPointOut, size)) return 1;
    return chrootMountIsoByPath(isoFolder, isoFileName, mountPointOut, rootDir) == 0 ? 0 : 1;
}

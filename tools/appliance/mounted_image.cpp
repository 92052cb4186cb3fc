#include "tools/appliance/mounted_image.h"

#include "disc/in_root.h"
#include "include/vornak.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace vornak::tool {
namespace {

/// A path that no command takes for an option.
std::string asPath(const std::string &path)
{
    return path.empty() || path.front() == '/' ? path : "./" + path;
}

} // namespace

MountedImage::MountedImage(const std::string &image, const MountPlace &place)
    : root_(place.root), mountPoint_(asPath(place.mountPoint))
{
    if (!mountPoint_.empty() && mountPoint_.back() != '/') mountPoint_ += '/';
    const std::string path = asPath(image);
    const std::size_t name = path.rfind('/') + 1;
    if (!mountPoint_.empty() && !makePlace()) return;
    mounted_ = mountAt(path.substr(0, name), path.substr(name));
    if (!mounted_) clearUp();
}

MountedImage::~MountedImage()
{
    unmount();
}

// The library takes what is there, also a link that a stranger has just made under this name.
bool MountedImage::makePlace()
{
    const auto make = [this] { return mkdir(mountPoint_.c_str(), 0777); };
    if ((root_.empty() ? make() : runInRoot(root_.c_str(), make)) == 0) return true;
    struct stat info = {}; // the child's errno is lost
    const bool isThere = !root_.empty() && lstat(folder().c_str(), &info) == 0;
    placeError_ = isThere ? EEXIST : errno;
    return false;
}

bool MountedImage::mountAt(const std::string &folder, const std::string &name)
{
    const char *from = folder.c_str(), *image = name.c_str(), *root = root_.c_str();
    if (!mountPoint_.empty())
        return (root_.empty() ? mountIsoByPath(from, image, mountPoint_.c_str())
                              : chrootMountIsoByPath(from, image, mountPoint_.c_str(), root)) == 0;
    char fresh[VORNAK_MOUNT_POINT_SIZE] = "";
    const int result = root_.empty() ? mountIso(from, image, fresh, sizeof fresh)
                                     : chrootMountIso(from, image, fresh, sizeof fresh, root);
    mountPoint_ = fresh;
    return result == 0;
}

bool MountedImage::unmount()
{
    if (!mounted_) return true;
    mounted_ = false;
    return (root_.empty() ? umountIso(mountPoint_.c_str())
                          : chrootUmountIso(mountPoint_.c_str(), root_.c_str())) == 0;
}

// A failed mount leaves its directory, and one that was killed may have come to pass.
void MountedImage::clearUp()
{
    mounted_ = true;
    if (unmount() || mountPoint_.empty()) return;
    if (mkdir(folder().c_str(), 0777) != 0 && errno != EEXIST) placeError_ = errno;
    rmdir(folder().c_str());
}

} // namespace vornak::tool

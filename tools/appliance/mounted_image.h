// A disc image while it is mounted.
#pragma once

#include <string>

namespace vornak::tool {

/// Where an image is mounted, and seen from which root directory.
struct MountPlace {
    std::string root;       ///< empty: the process's own; else all paths are inside it
    std::string mountPoint; ///< empty: a fresh one under /tmp
};

/// Mounts an image and unmounts it when destroyed.
class MountedImage {
public:
    /// @param image  its path, inside place.root where there is one
    MountedImage(const std::string &image, const MountPlace &place);
    ~MountedImage();
    MountedImage(const MountedImage &) = delete;
    MountedImage &operator=(const MountedImage &) = delete;

    bool isMounted() const { return mounted_; }

    /// The errno that keeps the directory from being made, if nothing is mounted for that; or 0.
    /// EEXIST: something of the name of place.mountPoint is there.
    int placeError() const { return placeError_; }

    /// The root of the disc, ending in "/", as this process sees it.
    std::string folder() const { return root_ + mountPoint_; }

    /// Unmounts; false when that fails.
    bool unmount();

private:
    bool makePlace();
    bool mountAt(const std::string &folder, const std::string &name);
    void clearUp();

    std::string root_, mountPoint_;
    bool mounted_ = false;
    int placeError_ = 0;
};

} // namespace vornak::tool

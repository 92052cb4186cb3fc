#include "include/vornak.h"

#include "base/fixed_text.h"
#include "base/heap.h"

#include <string_view>

namespace vornak {
namespace {

struct Share {
    const char *path;
    std::string_view marker; // begins where the volume root ends
};

constexpr Share s_Shares[] = {
    // in the order in which they are tried
    {"/share/Public", "Public"},
    {"/share/Multimedia", "Multimedia"},
    {"/share/Ombrel", "Ombrel"},
};

/// Only the first share that resolves counts, whether its canonical path has the marker or not.
int findVolumeRoot(char *root)
{
    for (const Share &share : s_Shares) {
        const HeapText path(realpath(share.path, nullptr));
        if (!path) continue;
        const std::string_view canonical(path.get());
        const std::size_t end = canonical.find(share.marker);
        if (end >= VORNAK_VOLUME_ROOT_SIZE) return 1; // no marker, or no room
        copyCut(root, VORNAK_VOLUME_ROOT_SIZE, canonical.substr(0, end));
        return 0;
    }
    return 1;
}

} // namespace
} // namespace vornak

int getMainMountPath(char *root)
{
    return root ? vornak::findVolumeRoot(root) : 1;
}

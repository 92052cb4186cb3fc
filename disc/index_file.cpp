#include "disc/disc_path.h"
#include "include/vornak.h"

namespace vornak {
namespace {

constexpr int kNoDisc = 0;

constexpr struct {
    std::string_view path;
    int disc;
} s_IndexFiles[] = {
    // a folder that holds both kinds is a DVD
    {"VIDEO_TS/VIDEO_TS.IFO", VORNAK_DISC_DVD},
    {"video_ts/video_ts.ifo", VORNAK_DISC_DVD},
    {"BDMV/index.bdmv", VORNAK_DISC_BD},
    {"bdmv/index.bdmv", VORNAK_DISC_BD},
};

/// The kind of disc at `folder`; `path` is its index file where there is a disc.
int findIndexFile(const char *folder, FixedText &path)
{
    if (!isDirectory(folder)) return kNoDisc;
    for (const auto &row : s_IndexFiles) {
        if (!fileExists(folder, row.path)) continue;
        path.clear();
        path.appendCut(folder);
        path.appendCut(row.path);
        return row.disc;
    }
    return kNoDisc;
}

/// Clears all of a caller's buffer and copies what fits.
void give(char *out, std::size_t size, std::string_view text)
{
    std::memset(out, 0, size);
    copyCut(out, size, text);
}

} // namespace
} // namespace vornak

int parseMountedFolder(const char *folder, char *out, unsigned outSize)
{
    using namespace vornak;
    if (!folder || !out) return kNoDisc;
    char buffer[kPathSize];
    FixedText path(buffer);
    const int disc = findIndexFile(folder, path);
    if (disc != kNoDisc) give(out, outSize, path.view());
    return disc;
}

int parseMountedFolder_v2(const char *folder, char *dirOut, unsigned dirOutSize, char *nameOut,
                          unsigned nameOutSize)
{
    using namespace vornak;
    if (!folder || !dirOut || !nameOut) return kNoDisc;
    char buffer[kPathSize];
    FixedText path(buffer);
    const int disc = findIndexFile(folder, path);
    if (disc == kNoDisc) return kNoDisc;
    const std::size_t name = path.view().rfind('/') + 1; // every index file lies in a folder
    give(dirOut, dirOutSize, path.view().substr(0, name));
    give(nameOut, nameOutSize, path.view().substr(name));
    return disc;
}

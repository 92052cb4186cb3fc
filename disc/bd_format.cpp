#include "base/directory.h"
#include "disc/disc_parts.h"
#include "disc/disc_path.h"
#include "include/vornak.h"

namespace vornak {
namespace {

/// Finds the folder of the streams, the last one where the disc has several; false without one,
/// or where the disc can't be read to its end.
bool findStreamFolder(const char *bdmv, FixedText &found)
{
    Directory directory(bdmv);
    if (!directory.isOpen()) return false;
    while (const char *name = directory.next()) {
        if (!isStreamFolder(name)) continue;
        char buffer[kPathSize];
        FixedText path(buffer);
        if (!path.append(bdmv, name, "/") || !isDirectory(buffer)) continue;
        found.clear();
        found.appendCut(path.view());
    }
    return directory.error() == 0 && !found.view().empty();
}

/// Finds the largest stream file, the first of equals; its size, or 0 where all are empty or not
/// all can be read.
std::int64_t findLargestStream(std::string_view folder, Directory &directory, FixedText &largest)
{
    std::int64_t size = 0;
    struct stat status;
    while (const char *name = directory.next()) {
        if (!isStream(name) || !findFile(folder, name, status)) continue;
        if (status.st_size <= size) continue;
        size = status.st_size;
        largest.clear();
        largest.appendCut(name);
    }
    return directory.error() == 0 ? size : 0;
}

} // namespace
} // namespace vornak

int parseBDFormat(const char *folder, const char *indexName, BD_FORMAT_ST *info)
{
    using namespace vornak;
    if (!folder || !indexName || !info) return 1;
    std::memset(info, 0, sizeof *info);
    if (!equalIgnoringCase(indexName, "index.bdmv") || !fileExists(folder, indexName)) return 1;

    char folderBuffer[kPathSize], nameBuffer[kPathSize];
    FixedText streams(folderBuffer), name(nameBuffer);
    if (!findStreamFolder(folder, streams)) return 1;
    Directory directory(folderBuffer);
    if (!directory.isOpen()) return 1;
    const std::int64_t size = findLargestStream(streams.view(), directory, name);
    if (size == 0) return 1;
    copyCut(info->folder, sizeof info->folder, streams.view());
    copyCut(info->fileName, sizeof info->fileName, name.view());
    info->fileSize = size;
    return 0;
}

#include "base/directory.h"
#include "disc/disc_parts.h"
#include "disc/disc_path.h"
#include "include/vornak.h"

namespace vornak {
namespace {

constexpr int kTitleCount = 100; // title sets are numbered with two digits

struct Title {
    std::int64_t size; // bytes of all parts
    int parts;
};

void addPart(Title &title, std::int64_t size)
{
    // Sparse files of a crafted image can claim any size.
    if (__builtin_add_overflow(title.size, size, &title.size)) title.size = INT64_MAX;
    ++title.parts;
}

/// The number of the largest title; the first of equals, 0 where all are empty.
int largest(const Title (&titles)[kTitleCount])
{
    int best = 0;
    for (int i = 1; i < kTitleCount; ++i)
        if (titles[i].size > titles[best].size) best = i;
    return best;
}

} // namespace
} // namespace vornak

int parseDVDFormat(const char *folder, const char *ifoName, DVD_FORMAT_ST *info)
{
    using namespace vornak;
    if (!folder || !ifoName || !info) return 1;
    std::memset(info, 0, sizeof *info);
    if (!equalIgnoringCase(ifoName, "VIDEO_TS.IFO") || !fileExists(folder, ifoName)) return 1;
    copyCut(info->folder, sizeof info->folder, folder);
    if (info->folder[0] == '\0') return 1;
    Directory directory(info->folder);
    if (!directory.isOpen()) return 1;

    Title titles[kTitleCount] = {};
    const std::string_view prefix(info->folder);
    struct stat status;
    while (const char *name = directory.next()) {
        const int title = titleOf(name);
        if (title != kNoTitle && findFile(prefix, name, status))
            addPart(titles[title], status.st_size);
    }
    if (directory.error() != 0) return 1;
    info->titleNo = largest(titles);
    info->totalSize = titles[info->titleNo].size;
    info->partCount = titles[info->titleNo].parts;
    FixedText(info->fileName)
        .appendCut(info->titleNo < 10 ? "VTS_0" : "VTS_", Digits(info->titleNo), "_1.VOB");
    return 0;
}

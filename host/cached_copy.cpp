// Finding copies that were transcoded ahead of time: IsMusicTranscodeFileReady() and
// IsVideoTranscodeFileReady().
#include "include/vornak.h"

#include "base/descriptor.h"
#include "base/fixed_text.h"
#include "base/heap.h"
#include "base/open_to_read.h"

#include <cstring>
#include <string_view>

namespace vornak {
namespace {

bool canOpen(const char *path)
{
    return static_cast<bool>(Descriptor(openToRead(path)));
}

HeapText findCachedCopy(std::string_view source, std::string_view tag1, std::string_view tag2)
{
    const std::size_t slash = source.rfind('/');
    if (slash == std::string_view::npos) return nullptr;

    char path[kPathSize];
    if (!FixedText(path).append(source.substr(0, slash + 1), ".@__thumb/transcode/",
                                source.substr(slash + 1), ".", tag2, "_", tag1))
        return nullptr;
    return HeapText(canOpen(path) ? strdup(path) : nullptr);
}

} // namespace
} // namespace vornak

char *IsMusicTranscodeFileReady(int, int, int, int, const char *tag1, const char *tag2,
                                const char *source)
{
    if (!tag1 || !tag2 || !source) return nullptr;
    return vornak::findCachedCopy(source, tag1, tag2).release();
}

char *IsVideoTranscodeFileReady(int, int, int, int, int, const char *tag1, const char *tag2,
                                const char *source)
{
    if (!tag1 || !tag2 || !source) return nullptr;
    return vornak::findCachedCopy(source, tag1, tag2).release();
}

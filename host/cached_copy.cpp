// Finding copies that were transcoded ahead of time: IsMusicTranscodeFileReady() and
// IsVideoTranscodeFileReady().
#include "include/vornak.h"

#include "base/fixed_text.h"
#include "base/heap.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace vornak {
namespace {

int openToRead(const char *path, int flags)
{
    int descriptor = -1;
    do descriptor = open(path, O_RDONLY | O_CLOEXEC | flags);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Doesn't wait for the other end of a FIFO, but for a process that holds a lease on the file.
bool canOpen(const char *path)
{
    int descriptor = openToRead(path, O_NONBLOCK);
    if (descriptor < 0 && errno == EWOULDBLOCK) descriptor = openToRead(path, 0);
    if (descriptor < 0) return false;
    close(descriptor);
    return true;
}

HeapText findCachedCopy(std::string_view source, std::string_view tag1, std::string_view tag2)
{
    const std::size_t slash = source.rfind('/');
    if (slash == std::string_view::npos) return nullptr;

    char path[1024];
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

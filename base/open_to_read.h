// Opening a file that somebody else looks after.
#pragma once

#include <cerrno>
#include <fcntl.h>

namespace vornak {

/// The open file, or -1 with errno set. Doesn't wait for the other end of a FIFO, but for a
/// process that holds a lease on the file; a signal that interrupts doesn't end the wait.
inline int openToRead(const char *path)
{
    const auto tryWith = [path](int flags) {
        int descriptor = -1;
        do descriptor = open(path, O_RDONLY | O_CLOEXEC | flags);
        while (descriptor < 0 && errno == EINTR);
        return descriptor;
    };
    const int descriptor = tryWith(O_NONBLOCK);
    return descriptor < 0 && errno == EWOULDBLOCK ? tryWith(0) : descriptor;
}

} // namespace vornak

#include "tools/terminal/diverted_output.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {

DivertedOutput::DivertedOutput(int descriptor)
    : descriptor_(descriptor), memory_(memfd_create("output", MFD_CLOEXEC)),
      saved_(fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1))
{
    std::fflush(nullptr);
    if (memory_ >= 0 && saved_ >= 0 && dup2(memory_, descriptor_) >= 0) return;
    const int error = errno;
    close(memory_);
    close(saved_);
    throw std::system_error(error, std::generic_category(), "can't divert output");
}

DivertedOutput::~DivertedOutput()
{
    restore();
    close(memory_);
}

std::string DivertedOutput::take()
{
    restore();
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t got = pread(memory_, block, sizeof block, static_cast<off_t>(text.size()));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return text;
        text.append(block, static_cast<std::size_t>(got));
    }
}

void DivertedOutput::restore()
{
    if (saved_ < 0) return;
    std::fflush(nullptr);
    dup2(saved_, descriptor_);
    close(saved_);
    saved_ = -1;
}

} // namespace vornak::tool

#include "host/addon_registry.h"

#include "base/fixed_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace vornak {
namespace {

constexpr std::size_t kCommandSize = 1024;

struct ClosePipe {
    void operator()(std::FILE *pipe) const noexcept { pclose(pipe); } // waits for the child
};

// getc() rather than fgets(), which drops what it has read when a signal interrupts it.
int readByte(std::FILE *pipe)
{
    for (;;) {
        errno = 0; // an EINTR that is left from before would be taken for this call's
        const int byte = std::getc(pipe);
        if (byte != EOF || std::ferror(pipe) == 0 || errno != EINTR) return byte;
        std::clearerr(pipe);
    }
}

/// Reads up to a line end, which is kept, or as much as fits. False: there is nothing to read.
bool readLine(std::FILE *pipe, char (&line)[kRegistryLineSize])
{
    std::size_t length = 0;
    while (length < kRegistryLineSize - 1) {
        const int byte = readByte(pipe);
        if (byte == EOF) break;
        line[length++] = static_cast<char>(byte);
        if (byte == '\n') break;
    }
    line[length] = '\0';
    return length > 0;
}

} // namespace

bool queryAddonRegistry(std::string_view section, std::string_view key,
                        char (&line)[kRegistryLineSize])
{
    char command[kCommandSize];
    if (!FixedText(command).append("/sbin/tolvex -f /etc/config/pakrel.conf ", section, " ", key))
        return false;
    const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command, "re"));
    if (!pipe || !readLine(pipe.get(), line)) return false;

    const std::size_t length = std::strlen(line); // a NUL byte in the line ends the text
    if (length > 0 && line[length - 1] == '\n') line[length - 1] = '\0';
    return true;
}

} // namespace vornak

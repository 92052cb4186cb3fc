#include "tools/profile/profile_file.h"

#include <array>
#include <cerrno>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category(), "standard input");
}

void writeAll(int descriptor, const char *text, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, text, size);
        if (written < 0) fail();
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

int makeMemory()
{
    const int memory = memfd_create("profile", MFD_CLOEXEC);
    if (memory < 0) fail();
    return memory;
}

/// Open until the process ends.
int keepStandardInput()
{
    const int memory = makeMemory();
    std::array<char, 65536> block;
    for (;;) {
        const ssize_t got = read(STDIN_FILENO, block.data(), block.size());
        if (got == 0) return memory;
        if (got > 0)
            writeAll(memory, block.data(), static_cast<std::size_t>(got));
        else if (errno != EINTR)
            fail();
    }
}

} // namespace

std::string profilePath(const std::string &name)
{
    if (name != "-") return name;
    static const int s_Kept = keepStandardInput();
    return "/proc/self/fd/" + std::to_string(s_Kept);
}

ProfileInMemory::ProfileInMemory(std::string_view text) : memory_(makeMemory())
{
    writeAll(memory_.get(), text.data(), text.size());
}

std::string profileTitle(const std::string &name)
{
    return name == "-" ? "standard input" : name;
}

} // namespace vornak::tool

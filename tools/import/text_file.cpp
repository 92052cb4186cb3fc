#include "tools/import/text_file.h"

#include "base/descriptor.h"
#include "tools/terminal/printable.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::size_t kLargest = 4'000'000;

std::string describe(std::string_view path, int line, std::string_view reason)
{
    if (line == 0) return fmt::format("{}: {}", printable(path), reason);
    return fmt::format("{}:{}: {}", printable(path), line, reason);
}

[[noreturn]] void failToRead(const std::string &path)
{
    throw ImportError(path, 0, fmt::format("can't read it: {}", std::strerror(errno)));
}

} // namespace

ImportError::ImportError(std::string_view path, int line, std::string_view reason)
    : std::runtime_error(describe(path, line, reason))
{}

std::string readTextFile(const std::string &path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) failToRead(path);
    if (!S_ISREG(status.st_mode)) throw ImportError(path, 0, "it is no regular file");
    std::string text;
    char block[65536];
    for (;;) {
        const ssize_t got = read(file.get(), block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) failToRead(path);
        if (got == 0) return text;
        text.append(block, static_cast<std::size_t>(got));
        if (text.size() > kLargest)
            throw ImportError(
                path, 0,
                fmt::format("it is larger than {} MB: no profile is", kLargest / 1'000'000));
    }
}

} // namespace vornak::tool

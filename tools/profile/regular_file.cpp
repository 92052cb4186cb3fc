#include "tools/profile/regular_file.h"

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

std::string describe(std::string_view title, int line, std::string_view reason)
{
    if (line == 0) return fmt::format("{}: {}", printable(title), reason);
    return fmt::format("{}:{}: {}", printable(title), line, reason);
}

} // namespace

ProfileError::ProfileError(std::string_view title, int line, std::string_view reason)
    : std::runtime_error(describe(title, line, reason)), line_(line)
{}

std::string readRegularFile(const std::string &path, const std::string &title, std::size_t most)
{
    const auto refuse = [&](std::string_view why) { throw ProfileError(title, 0, why); };
    const auto failToRead = [&] { refuse(fmt::format("can't read it: {}", std::strerror(errno))); };
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) failToRead();
    if (S_ISDIR(status.st_mode)) refuse("it is a directory");
    if (!S_ISREG(status.st_mode)) refuse("it is no regular file");
    std::string text;
    char block[65536];
    for (;;) {
        const ssize_t got = read(file.get(), block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) failToRead();
        if (got == 0) return text;
        text.append(block, static_cast<std::size_t>(got));
        if (text.size() > most)
            refuse(fmt::format("it is larger than {} MB: no profile is", most / 1'000'000));
    }
}

} // namespace vornak::tool

// What a call leaves open or unreaped in this process.
#pragma once

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <sys/wait.h>

namespace vornak::test {

struct Leftovers {
    long descriptors = 0;
    bool children = false; ///< running, or ended and not waited for

    bool operator==(const Leftovers &) const = default;
};

inline Leftovers countLeftovers()
{
    const std::filesystem::directory_iterator open("/proc/self/fd");
    siginfo_t info{};
    const bool none = waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
    return {std::distance(begin(open), end(open)), !none};
}

} // namespace vornak::test

#include "tools/probe/freed_memory.h"

#include <malloc.h>
#include <mutex>

namespace vornak::tool {

void keepFreedMemory()
{
    constexpr int kKept = 64 * 1024 * 1024;
    constexpr int kLargestBlock =
        32 * 1024 * 1024; // beyond, mmap() and munmap(); the most there is

    static std::once_flag once;
    std::call_once(once, [] {
        mallopt(M_TRIM_THRESHOLD, kKept);
        mallopt(M_MMAP_THRESHOLD, kLargestBlock);
    });
}

} // namespace vornak::tool

// Numbers come from a counter in a file under /tmp, where the names made with them live too:
// all processes share it, forked ones included, and it survives them. It is never behind the
// clock. So when the file is lost, the new counter starts past the numbers given out before,
// unless those were taken at more than one a second ever since the lost one was made.
#include "include/vornak_host.h"

#include "platform/descriptor.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using vornak::Descriptor;

using Counter = std::atomic_ref<std::int64_t>;
static_assert(Counter::is_always_lock_free, "processes share no lock");

constexpr char kCounterFile[] = "/tmp/.vornak-unique-number";

int openCounter()
{
    constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW;
    const int created = open(kCounterFile, kFlags | O_CREAT | O_EXCL, 0666);
    if (created < 0) return open(kCounterFile, kFlags);
    fchmod(created, 0666); // whatever the umask: every user's processes count on
    return created;
}

std::int64_t raise(Counter counter)
{
    const std::int64_t now = std::time(nullptr);
    std::int64_t last = counter.load();
    std::int64_t next;
    do next = std::max(last + 1, now);
    while (!counter.compare_exchange_weak(last, next));
    return next;
}

std::optional<std::int64_t> nextFromFile()
{
    constexpr off_t kSize = sizeof(std::int64_t);
    const Descriptor file(openCounter());
    struct stat info;
    if (!file || fstat(file.get(), &info) != 0) return {};
    if (info.st_size < kSize && ftruncate(file.get(), kSize) != 0) return {};
    void *mapped = mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (mapped == MAP_FAILED) return {};
    const std::int64_t next = raise(Counter(*static_cast<std::int64_t *>(mapped)));
    munmap(mapped, kSize);
    return next;
}

std::int64_t drawRandom()
{
    std::uint32_t drawn = 0;
    if (getrandom(&drawn, sizeof drawn, 0) < 0) drawn = static_cast<std::uint32_t>(getpid());
    return drawn;
}

} // namespace

int Telmo_getUniqueNumer(void)
{
    const std::optional<std::int64_t> counted = nextFromFile();
    // without the file, chance keeps numbers apart
    return static_cast<int>((counted ? *counted : drawRandom()) & INT_MAX);
}

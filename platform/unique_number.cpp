// Numbers for names under /tmp, where anybody may put what he likes: whoever could tell the next
// number would have a link waiting there. So they are a count in an order that only its key tells.
#include "include/vornak_host.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <pthread.h>
#include <sys/auxv.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// No lock: a child may be forked while another thread is in here.
using Word = std::atomic<std::uint64_t>;
static_assert(Word::is_always_lock_free);

Word s_Key[2]; // 0: not drawn yet
std::atomic<std::uint32_t> s_Count;

// With its parent's key a child would be given its parent's next numbers.
[[maybe_unused]] const int s_Registered = pthread_atfork(nullptr, nullptr, [] {
    for (Word &word : s_Key) word = 0;
});

std::uint64_t drawWord(std::size_t index)
{
    std::uint64_t word = 0;
    while (getrandom(&word, sizeof word, 0) != sizeof word) {
        if (errno == EINTR) continue;
        // Old kernels don't have it, but give each program 16 bytes; a forked one has the same.
        const auto *bytes = reinterpret_cast<const char *>(getauxval(AT_RANDOM)); // NOLINT
        std::memcpy(&word, bytes + 8 * index, 8);
        return word ^ static_cast<std::uint64_t>(getpid());
    }
    return word;
}

/// A word of the key; of threads that come here first at the same time, all take one's.
std::uint64_t keyWord(std::size_t index)
{
    std::uint64_t word = s_Key[index];
    if (word != 0) return word;
    const std::uint64_t drawn = std::max(drawWord(index), std::uint64_t{1});
    return s_Key[index].compare_exchange_strong(word, drawn) ? drawn : word;
}

/// SipHash-2-4 of eight bytes, less the length that it would end with.
std::uint64_t hash(std::uint64_t message)
{
    const std::uint64_t key[2] = {keyWord(0), keyWord(1)};
    std::uint64_t a = key[0] ^ 0x736f6d6570736575, b = key[1] ^ 0x646f72616e646f6d;
    std::uint64_t c = key[0] ^ 0x6c7967656e657261, d = key[1] ^ 0x7465646279746573;
    const auto mix = [&](int rounds) {
        for (; rounds > 0; --rounds) {
            a += b;
            c += d;
            b = std::rotl(b, 13) ^ a;
            d = std::rotl(d, 16) ^ c;
            a = std::rotl(a, 32) + d;
            c += b;
            b = std::rotl(b, 17) ^ c;
            d = std::rotl(d, 21) ^ a;
            c = std::rotl(c, 32);
        }
    };
    d ^= message;
    mix(2);
    a ^= message;
    c ^= 0xff;
    mix(4);
    return a ^ b ^ c ^ d;
}

/// A permutation of the numbers of 31 bits: a Feistel network, whose every round can be undone,
/// over their upper 15 and their lower 16.
std::uint32_t permute(std::uint32_t number)
{
    std::uint32_t upper = number >> 16 & 0x7fff, lower = number & 0xffff;
    for (std::uint64_t round = 0; round < 10; round += 2) {
        upper ^= hash(round << 16 | lower) & 0x7fff;
        lower ^= hash((round + 1) << 16 | upper) & 0xffff;
    }
    return upper << 16 | lower;
}

/// Whether there is anything of that name, a link that leads nowhere included.
bool isTaken(int number)
{
    char path[sizeof VORNAK_MOUNT_PREFIX + 16];
    std::snprintf(path, sizeof path, VORNAK_MOUNT_PREFIX "%d", number);
    struct stat status;
    return lstat(path, &status) == 0;
}

} // namespace

int Telmo_getUniqueNumer(void)
{
    for (;;) {
        const int number = static_cast<int>(permute(s_Count++));
        if (!isTaken(number)) return number;
    }
}

// Work whose instructions are counted. A bench program calls measure() for each piece of work
// and ratio() for each comparison; bench/ratios runs it under callgrind and prints the table.
#pragma once

#include <cstdio>
#include <valgrind/callgrind.h>

namespace vornak::bench {

/// Counts the instructions of one call of `work`, after one that warms up what is lazily bound.
template <class Work>
void measure(const char *name, Work work)
{
    work();
    CALLGRIND_ZERO_STATS;
    CALLGRIND_START_INSTRUMENTATION;
    work();
    CALLGRIND_STOP_INSTRUMENTATION;
    CALLGRIND_DUMP_STATS_AT(name);
}

/// Says that `name` shall cost at most `limit` times `baseline`.
inline void ratio(const char *name, const char *baseline, double limit)
{
    std::printf("ratio %s %s %g\n", name, baseline, limit);
}

/// Keeps the compiler from knowing a value, so that work on it stays.
template <class T>
void opaque(T &value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

} // namespace vornak::bench

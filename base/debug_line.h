// The lines that the library writes about its decisions when the host's g_debug_level is set.
#pragma once

#include "include/vornak_host.h"

#include <cstdio>
#include <string_view>

namespace vornak {

/// A path less its folders. GCC 11 has no macro for that.
consteval const char *fileNameIn(const char *path)
{
    return path + std::string_view(path).rfind('/') + 1; // npos + 1 is 0
}

} // namespace vornak

// A macro because the line reports the place that it stands at; `func` is the exported function
// that is at work. The level is tested before any argument is evaluated.
#define VORNAK_WRITE_DEBUG_LINE(before, after, func, format, ...)                                  \
    do {                                                                                           \
        if (g_debug_level != 0)                                                                    \
            std::fprintf(stderr, before "[File:%s][Line:%d][Func:%s]: " format "\n" after,         \
                         vornak::fileNameIn(__FILE__), __LINE__, func __VA_OPT__(, ) __VA_ARGS__); \
    } while (false)

#define VORNAK_DEBUG(func, format, ...)                                                            \
    VORNAK_WRITE_DEBUG_LINE("", "", func, format __VA_OPT__(, ) __VA_ARGS__)

// The same in bold yellow, for the lines that sum up a step.
#define VORNAK_DEBUG_BOLD(func, format, ...)                                                       \
    VORNAK_WRITE_DEBUG_LINE("\033[1;33m", "\033[m", func, format __VA_OPT__(, ) __VA_ARGS__)

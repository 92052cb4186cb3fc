// Paths inside a disc: a folder that ends in "/" and names, joined with nothing between them.
#pragma once

#include "base/fixed_text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace vornak {

static_assert(sizeof(off_t) == 8, "titles are larger than 2 GB");

/// Queries the file at the joined path; false where there is none, or the path doesn't fit.
inline bool findFile(std::string_view folder, std::string_view name, struct stat &status)
{
    char buffer[kPathSize];
    FixedText path(buffer);
    return path.append(folder, name) && stat(buffer, &status) == 0;
}

inline bool fileExists(std::string_view folder, std::string_view name)
{
    struct stat ignored;
    return findFile(folder, name, ignored);
}

inline bool isDirectory(const char *path)
{
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace vornak

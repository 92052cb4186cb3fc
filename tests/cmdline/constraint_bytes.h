// A constraint set as the bytes that it is, for tests that nothing else of it has changed.
#pragma once

#include "include/vornak.h"

#include <string_view>

namespace vornak::test {

inline std::string_view bytesOf(const TRANSCODE_CONSTRAINT_ST &set)
{
    return {reinterpret_cast<const char *>(&set), sizeof set};
}

} // namespace vornak::test

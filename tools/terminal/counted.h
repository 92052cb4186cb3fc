// Numbers of things in messages.
#pragma once

#include <cstddef>
#include <fmt/format.h>
#include <string>
#include <string_view>

namespace vornak::tool {

/// "1 file", "2 files"
inline std::string counted(std::size_t count, std::string_view what)
{
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

} // namespace vornak::tool

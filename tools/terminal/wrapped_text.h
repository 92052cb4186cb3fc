// Prose in lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vornak::tool {

/// The words of a text, which blanks and line ends separate, in lines of at most `width` columns
/// where words allow. @param column  where the first line begins; hang  blanks before all others
std::string wrappedText(std::string_view text, std::size_t width, std::size_t column,
                        std::size_t hang);

} // namespace vornak::tool

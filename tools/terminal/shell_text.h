// Words as a shell's command line reads them back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/**
 * `words` as a command for any POSIX shell. A word of plain characters stands as it is, any other
 * in quotes. Bytes that a terminal might obey, or that are no text, are written as octal numbers
 * for printf; a line end alone stays what it is, since a shell drops one at the end of "$(…)".
 */
std::string shellCommand(const std::vector<std::string> &words);

} // namespace vornak::tool

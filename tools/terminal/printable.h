// Text from outside (file names, tags, profile content) made safe to show.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vornak::tool {

/// `text` as valid UTF-8 without control characters: those, and bytes that are no UTF-8, become
/// \xNN, and a backslash becomes two. Safe on a terminal and in JSON, and unambiguous.
std::string printable(std::string_view text);

/// The text that printable() made this of; none: it makes no such text.
std::optional<std::string> unprintable(std::string_view text);

/// The bytes of `text` in hexadecimal, for the field of a JSON document that keeps them exact.
std::string hexBytes(std::string_view text);

} // namespace vornak::tool

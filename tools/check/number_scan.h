// How the loader reads a number, character by character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vornak::tool {

/// How far a number was read, and what came of it.
struct NumberScan {
    std::size_t stop = 0; ///< the first character that is no part of it
    bool hasDigits = false;
    bool suffixInside = false; ///< a K or M with more after it
    bool overflows = false;
    std::int32_t value = 0; ///< wrapped around where it overflows
};

/// What a K or M multiplies by; 0 for other characters.
unsigned suffixFactor(char c);

/// Reads from `start`: a sign and digits; with `suffixes` K and M, too.
NumberScan scanNumber(std::string_view text, std::size_t start, bool suffixes);

} // namespace vornak::tool

// The numbers in attribute values.
#pragma once

namespace vornak {

/// A number, and how far it was read.
struct Number {
    int value;       ///< the low 32 bits
    bool overflows;  ///< it is larger than an int, or lies that far below 0
    const char *end; ///< the first character that is no part of it
};

/// A number with K for 1000 and M for 1000000 wherever they stand: "128K" is 128000, "1K5" is
/// 10005. Ends at any other character.
Number readSuffixedNumber(const char *text);

/// A plain number as strtol reads it where long has 64 bits.
Number readDecimal(const char *text);

/// What a K or M multiplies by; 0 for other characters.
constexpr unsigned suffixFactor(char c)
{
    if (c == 'K' || c == 'k') return 1000;
    return c == 'M' || c == 'm' ? 1'000'000 : 0;
}

} // namespace vornak

// The numbers in attribute values.
#pragma once

namespace vornak {

/// A number with K for 1000 and M for 1000000 wherever they stand: "128K" is 128000, "1K5" is
/// 10005. Ends at any other character and wraps in 32 bits.
int parseSuffixedNumber(const char *text);

/// A plain number as strtol reads it where long has 64 bits, of which the low 32 count.
int parseDecimal(const char *text);

} // namespace vornak

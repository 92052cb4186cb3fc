#include "profile/numbers.h"

#include <climits>
#include <cstdint>
#include <cstdlib>

namespace vornak {

Number readSuffixedNumber(const char *text)
{
    const bool negative = *text == '-';
    if (negative) ++text;
    std::uint64_t number = 0; // unsigned, so that it may wrap
    bool overflows = false;
    for (;; ++text) {
        const unsigned digit = static_cast<unsigned char>(*text) - unsigned{'0'};
        if (digit <= 9)
            number = number * 10 + digit;
        else if (const unsigned factor = suffixFactor(*text); factor != 0)
            number *= factor;
        else
            break;
        overflows |= number > INT_MAX;
    }
    return {static_cast<int>(negative ? 0 - number : number), overflows, text};
}

Number readDecimal(const char *text)
{
    char *end;
    const long long number = std::strtoll(text, &end, 10);
    return {static_cast<int>(number), number > INT_MAX || number < -INT_MAX, end};
}

} // namespace vornak

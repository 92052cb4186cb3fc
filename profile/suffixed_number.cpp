#include "profile/suffixed_number.h"

#include <cstdint>
#include <cstdlib>

namespace vornak {

int parseSuffixedNumber(const char *text)
{
    const bool negative = *text == '-';
    if (negative) ++text;
    std::uint32_t number = 0; // unsigned, so that it may wrap
    for (;; ++text) {
        if (*text >= '0' && *text <= '9')
            number = number * 10 + static_cast<std::uint32_t>(*text - '0');
        else if (*text == 'K' || *text == 'k')
            number *= 1000;
        else if (*text == 'M' || *text == 'm')
            number *= 1000000;
        else
            return static_cast<int>(negative ? 0 - number : number);
    }
}

int parseDecimal(const char *text)
{
    return static_cast<int>(std::strtoll(text, nullptr, 10));
}

} // namespace vornak

#include "tools/check/number_scan.h"

#include <limits>

namespace vornak::tool {
namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

unsigned suffixFactor(char c)
{
    if (c == 'K' || c == 'k') return 1000;
    return c == 'M' || c == 'm' ? 1'000'000 : 0;
}

NumberScan scanNumber(std::string_view text, std::size_t start, bool suffixes)
{
    NumberScan result;
    std::int64_t exact = 0; // until it overflows
    std::uint32_t wrapped = 0;
    bool afterSuffix = false;
    result.stop = start;
    if (result.stop < text.size() && (text[start] == '-' || (!suffixes && text[start] == '+')))
        ++result.stop;
    const bool negative = result.stop > start && text[start] == '-';
    for (; result.stop < text.size(); ++result.stop) {
        const char c = text[result.stop];
        const unsigned factor = isDigit(c) ? 10 : suffixes ? suffixFactor(c) : 0;
        if (factor == 0) break;
        const unsigned added = isDigit(c) ? static_cast<unsigned>(c - '0') : 0;
        result.hasDigits |= isDigit(c);
        result.suffixInside |= afterSuffix;
        afterSuffix |= !isDigit(c);
        exact = result.overflows ? exact : exact * factor + added;
        wrapped = wrapped * factor + added;
        result.overflows |= exact > std::numeric_limits<std::int32_t>::max();
    }
    result.value = static_cast<std::int32_t>(negative ? 0 - wrapped : wrapped);
    return result;
}

} // namespace vornak::tool

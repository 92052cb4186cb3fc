// Comparisons of names that take ASCII letters as equal in either case, whatever the host's locale.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace vornak {

constexpr char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), lowerAscii);
    return lower;
}

constexpr bool equalIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
}

constexpr bool beginsIgnoringCase(std::string_view text, std::string_view start)
{
    return text.size() >= start.size() && equalIgnoringCase(text.substr(0, start.size()), start);
}

constexpr bool endsIgnoringCase(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() &&
           equalIgnoringCase(text.substr(text.size() - end.size()), end);
}

} // namespace vornak

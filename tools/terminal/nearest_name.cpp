#include "tools/terminal/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <numeric>

namespace vornak::tool {
namespace {

bool sameLetter(char a, char b)
{
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
}

/// Letters to insert, delete, replace or swap with their neighbour until `a` is `b`.
std::size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (sameLetter(a[i - 1], b[j - 1]) ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && sameLetter(a[i - 1], b[j - 2]) && sameLetter(a[i - 2], b[j - 1]))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = last;
        last = row;
    }
    return last[b.size()];
}

constexpr std::size_t kLongestName = 64; // longer words are no typing errors

} // namespace

std::optional<std::string> nearestName(std::string_view word, const std::vector<std::string> &known)
{
    if (word.empty() || word.size() > kLongestName) return std::nullopt;
    std::optional<std::string> nearest;
    std::size_t least = std::max<std::size_t>(word.size() / 3, 1) + 1;
    for (const std::string &name : known) {
        const std::size_t distance = editDistance(word, name);
        if (distance >= least || distance >= std::max(word.size(), name.size())) continue;
        least = distance;
        nearest = name;
    }
    return nearest;
}

std::string didYouMean(std::string_view word, const std::vector<std::string> &known)
{
    const std::optional<std::string> name = nearestName(word, known);
    return name ? fmt::format("; did you mean {}?", *name) : std::string{};
}

std::string nearestOrAll(std::string_view word, const std::vector<std::string> &known)
{
    if (known.empty()) return "; there are none";
    const std::string nearest = didYouMean(word, known);
    return nearest.empty() ? fmt::format("; known are {}", fmt::join(known, ", ")) : nearest;
}

} // namespace vornak::tool

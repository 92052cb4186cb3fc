#include "tools/check/option_words.h"

#include <algorithm>
#include <charconv>

namespace vornak::tool {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

} // namespace

std::string_view takeWord(std::string_view &text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

std::optional<std::string_view> optionValue(std::string_view text,
                                            std::span<const std::string_view> names)
{
    std::optional<std::string_view> value;
    for (std::string_view word = takeWord(text); !word.empty(); word = takeWord(text))
        if (std::ranges::find(names, word) != names.end()) value = takeWord(text);
    return value;
}

std::optional<double> optionNumber(std::string_view word)
{
    double number = 0;
    const char *const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc()) return std::nullopt;
    const std::string_view suffix(stop, static_cast<std::size_t>(end - stop));
    if (suffix.empty()) return number;
    if (suffix == "k" || suffix == "K") return number * 1e3;
    if (suffix == "M") return number * 1e6;
    if (suffix == "G") return number * 1e9;
    return std::nullopt;
}

} // namespace vornak::tool

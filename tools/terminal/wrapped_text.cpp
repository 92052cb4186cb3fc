#include "tools/terminal/wrapped_text.h"

#include <algorithm>

namespace vornak::tool {
namespace {

/// How many columns a word in UTF-8 takes, of characters that take one each.
std::size_t columnsOf(std::string_view word)
{
    return static_cast<std::size_t>(std::ranges::count_if(
        word, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

} // namespace

std::string wrappedText(std::string_view text, std::size_t width, std::size_t column,
                        std::size_t hang)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    std::string lines;
    for (std::size_t from = text.find_first_not_of(kBlanks); from != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, from), text.size());
        const std::string_view word = text.substr(from, end - from);
        const std::size_t columns = columnsOf(word);
        if (column + columns + 1 > width && !lines.empty()) {
            lines += '\n' + std::string(hang, ' ');
            column = hang;
        } else if (!lines.empty()) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += columns;
        from = text.find_first_not_of(kBlanks, end);
    }
    return lines;
}

} // namespace vornak::tool

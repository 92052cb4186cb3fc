#include "tools/terminal/shell_text.h"

#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                    "%+,-./:=@_";

/// Whether a terminal and a text file take the word as it is.
bool isText(std::string word)
{
    std::erase_if(word, [](char c) { return c == '\\' || c == '\n'; });
    return printable(word) == word;
}

bool isAscii(char c)
{
    return c == '\n' || (c >= 0x20 && c < 0x7F);
}

void appendQuoted(std::string &to, std::string_view text)
{
    to += '\'';
    for (const char c : text)
        if (c == '\'')
            to += R"('\'')";
        else
            to += c;
    to += '\'';
}

void appendOctal(std::string &to, std::string_view bytes)
{
    to += "\"$(printf '";
    for (const char c : bytes) to += fmt::format("\\{:03o}", static_cast<unsigned char>(c));
    to += "')\"";
}

std::string shellWord(const std::string &word)
{
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string quoted;
    if (word.empty() || isText(word)) {
        appendQuoted(quoted, word);
        return quoted;
    }
    for (auto start = word.begin(); start != word.end();) {
        const bool ascii = isAscii(*start);
        const auto end =
            std::find_if(start, word.end(), [&](char c) { return isAscii(c) != ascii; });
        (ascii ? appendQuoted : appendOctal)(quoted, {start, end});
        start = end;
    }
    return quoted;
}

} // namespace

std::string shellCommand(const std::vector<std::string> &words)
{
    std::string line;
    for (const std::string &word : words) {
        if (!line.empty()) line += ' ';
        line += shellWord(word);
    }
    return line;
}

} // namespace vornak::tool

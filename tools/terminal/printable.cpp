#include "tools/terminal/printable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace vornak::tool {
namespace {

// First bytes of UTF-8 sequences; the second byte's range keeps out overlong forms, surrogates
// and what lies past U+10FFFF.
constexpr struct {
    unsigned char from, to;
    int length;
    unsigned char secondFrom, secondTo;
} s_Sequences[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

unsigned char byteAt(std::string_view text, std::size_t index)
{
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

/// Length of the UTF-8 sequence of several bytes at the start of `text`, or 0.
int sequenceLength(std::string_view text)
{
    const unsigned char first = byteAt(text, 0);
    for (const auto &row : s_Sequences) {
        if (first < row.from || first > row.to) continue;
        if (byteAt(text, 1) < row.secondFrom || byteAt(text, 1) > row.secondTo) return 0;
        for (int i = 2; i < row.length; ++i)
            if ((byteAt(text, static_cast<std::size_t>(i)) & 0xC0) != 0x80) return 0;
        return row.length;
    }
    return 0;
}

// C1 controls are U+0080 to U+009F; the bidirectional marks reorder what stands around them.
bool isControl(std::string_view sequence)
{
    if (sequence.size() == 2)
        return sequence == "\xD8\x9C" || (sequence[0] == '\xC2' && byteAt(sequence, 1) < 0xA0);
    const std::uint32_t lastTwo = byteAt(sequence, 1) << 8U | byteAt(sequence, 2);
    return sequence.size() == 3 && sequence[0] == '\xE2' &&
           ((lastTwo >= 0x808E && lastTwo <= 0x808F) || (lastTwo >= 0x80A8 && lastTwo <= 0x80AE) ||
            (lastTwo >= 0x81A6 && lastTwo <= 0x81A9));
}

bool isPlain(char c)
{
    return c >= 0x20 && c < 0x7F && c != '\\';
}

void appendHex(std::string &to, char c)
{
    constexpr const char *kDigits = "0123456789abcdef";
    to += kDigits[static_cast<unsigned char>(c) >> 4U];
    to += kDigits[static_cast<unsigned char>(c) & 0xFU];
}

/// How `text` is shown up to the end of its first character.
std::string escaped(std::string_view first)
{
    if (first == "\\") return "\\\\";
    std::string out;
    for (const char c : first) appendHex(out += "\\x", c);
    return out;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const auto plain = std::ranges::find_if_not(text, isPlain) - text.begin();
        out += text.substr(0, static_cast<std::size_t>(plain));
        text.remove_prefix(static_cast<std::size_t>(plain));
        if (text.empty()) break;
        const auto length = static_cast<std::size_t>(std::max(sequenceLength(text), 1));
        const std::string_view first = text.substr(0, length);
        if (length > 1 && !isControl(first))
            out += first;
        else
            out += escaped(first);
        text.remove_prefix(length);
    }
    return out;
}

std::optional<std::string> unprintable(std::string_view text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        unsigned char byte = static_cast<unsigned char>(text[at]);
        std::size_t length = 1;
        if (text.substr(at).starts_with("\\\\")) {
            length = 2;
        } else if (byte == '\\') {
            length = 4;
            const char *end = text.data() + std::min(at + length, text.size());
            if (!text.substr(at).starts_with("\\x") ||
                std::from_chars(end - 2, end, byte, 16).ptr != end)
                return std::nullopt;
        }
        out += static_cast<char>(byte);
        at += length;
    }
    if (printable(out) != text) return std::nullopt;
    return out;
}

std::string hexBytes(std::string_view text)
{
    std::string out;
    out.reserve(2 * text.size());
    for (const char c : text) appendHex(out, c);
    return out;
}

} // namespace vornak::tool

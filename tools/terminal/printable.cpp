#include "tools/terminal/printable.h"

#include <cstdint>
#include <fmt/format.h>

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

} // namespace

std::string printable(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const unsigned char first = byteAt(text, 0);
        std::size_t length = 1;
        bool plain = first >= 0x20 && first < 0x7F;
        if (const int sequence = sequenceLength(text); sequence > 0) {
            length = static_cast<std::size_t>(sequence);
            plain = !isControl(text.substr(0, length));
        }
        if (first == '\\')
            out += "\\\\";
        else if (plain)
            out += text.substr(0, length);
        else
            for (const char c : text.substr(0, length))
                out += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
        text.remove_prefix(length);
    }
    return out;
}

std::string hexBytes(std::string_view text)
{
    std::string out;
    for (const char c : text) out += fmt::format("{:02x}", static_cast<unsigned char>(c));
    return out;
}

} // namespace vornak::tool

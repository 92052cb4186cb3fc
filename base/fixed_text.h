// Text in a buffer of fixed size that belongs to somebody else.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

namespace vornak {

/// Bytes of a path that the library builds, the NUL included.
constexpr std::size_t kPathSize = 1024;

/// Builds a NUL-terminated text in memory that it doesn't own: cleared at the start, never past
/// the end. A buffer of no bytes is left alone.
class FixedText {
public:
    FixedText(char *buffer, std::size_t size) : begin_(buffer), size_(size) { clear(); }

    template <std::size_t Size>
    explicit FixedText(char (&buffer)[Size]) : FixedText(buffer, Size)
    {}

    void clear()
    {
        length_ = 0;
        if (size_ > 0) begin_[0] = '\0';
    }

    /// Appends a piece whole; false, and nothing appended, when it doesn't fit.
    [[nodiscard]] bool append(std::string_view piece)
    {
        if (piece.size() > room()) return false;
        put(piece);
        return true;
    }

    /// Appends pieces one after the other, up to the first that doesn't fit.
    template <class... Pieces>
    [[nodiscard]] bool append(std::string_view first, const Pieces &...rest)
    {
        return append(first) && append(rest...);
    }

    /// Appends as much of the pieces as fits.
    template <class... Pieces>
    void appendCut(std::string_view first, const Pieces &...rest)
    {
        put(first.substr(0, room()));
        if constexpr (sizeof...(rest) > 0) appendCut(rest...);
    }

    std::string_view view() const { return {begin_, length_}; }

private:
    std::size_t room() const { return size_ > 0 ? size_ - 1 - length_ : 0; }

    void put(std::string_view piece)
    {
        if (piece.empty()) return;
        std::memcpy(begin_ + length_, piece.data(), piece.size());
        length_ += piece.size();
        begin_[length_] = '\0';
    }

    char *begin_;
    std::size_t size_;
    std::size_t length_ = 0;
};

/// A number in decimal digits, as a piece of a text.
class Digits {
public:
    explicit Digits(std::int64_t number)
        : size_(static_cast<std::size_t>(
              std::to_chars(std::begin(text_), std::end(text_), number).ptr - text_))
    {}

    operator std::string_view() const { return {text_, size_}; }

private:
    char text_[20]; // of the longest number, with its sign
    std::size_t size_;
};

/// Copies `text` into a buffer, cut to fit; a buffer of no bytes is left alone.
inline void copyCut(char *buffer, std::size_t size, std::string_view text)
{
    FixedText(buffer, size).appendCut(text);
}

} // namespace vornak

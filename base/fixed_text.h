// Text in a buffer of fixed size that belongs to somebody else.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace vornak {

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
    [[nodiscard]] bool append(std::string_view first, Pieces... rest)
    {
        return append(first) && append(std::string_view(rest)...);
    }

    /// Appends as much of a piece as fits.
    void appendCut(std::string_view piece) { put(piece.substr(0, room())); }

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

/// Copies `text` into a buffer, cut to fit; a buffer of no bytes is left alone.
inline void copyCut(char *buffer, std::size_t size, std::string_view text)
{
    FixedText(buffer, size).appendCut(text);
}

} // namespace vornak

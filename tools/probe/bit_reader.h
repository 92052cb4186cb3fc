// The bits of a stream's headers, as H.264, HEVC and MPEG-4 write them: the high bit of a byte
// first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vornak::tool {

class BitReader {
public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    /// `count` bits, at most 32. Behind the end there are zeros.
    std::uint32_t read(int count)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i) value = value << 1 | readBit();
        return value;
    }

    bool readFlag() { return readBit() != 0; }
    void skip(int count) { position_ += static_cast<std::size_t>(count); }

    /// An Exp-Golomb number: n zeros, a one and n bits.
    std::uint32_t readUnsigned()
    {
        int zeros = 0;
        while (zeros < 32 && !pastEnd() && !readFlag()) ++zeros;
        return zeros < 32 ? (1U << zeros) - 1 + read(zeros) : 0;
    }

    /// The same, counting 0, 1, -1, 2, -2, ...
    int readSigned()
    {
        const std::uint32_t code = readUnsigned();
        const int half = static_cast<int>(code / 2);
        return code % 2 != 0 ? half + 1 : -half;
    }

    /// Whether more was read than there is.
    bool pastEnd() const { return position_ > bytes_.size() * 8; }

private:
    std::uint32_t readBit()
    {
        const std::size_t at = position_++;
        if (at / 8 >= bytes_.size()) return 0;
        return bytes_[at / 8] >> (7 - at % 8) & 1U;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t position_ = 0;
};

/// Takes out the bytes that keep start codes from occurring inside a unit.
inline std::vector<std::uint8_t> unescape(std::span<const std::uint8_t> unit)
{
    std::vector<std::uint8_t> bytes;
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        const bool escape = zeros >= 2 && byte == 3;
        zeros = byte == 0 ? zeros + 1 : 0;
        if (!escape) bytes.push_back(byte);
    }
    return bytes;
}

} // namespace vornak::tool

#include "tools/probe/mpeg4_headers.h"

#include "tools/probe/bit_reader.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace vornak::tool {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kFirstVideoObjectLayer = 0x20;
constexpr std::uint8_t kLastVideoObjectLayer = 0x2F;
constexpr std::uint8_t kUserData = 0xB2;

/// What follows the first start code between `first` and `last`, up to the end of all.
Bytes findSection(Bytes bytes, std::uint8_t first, std::uint8_t last)
{
    for (std::size_t i = 0; i + 4 <= bytes.size(); ++i)
        if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1 && bytes[i + 3] >= first &&
            bytes[i + 3] <= last)
            return bytes.subspan(i + 4);
    return {};
}

void skipVolControl(BitReader &bits)
{
    bits.skip(3); // chroma format, low delay
    if (bits.readFlag()) bits.skip(79);
}

/// Bits that hold a time of less than `ticks` ticks.
int timeBits(std::uint32_t ticks)
{
    return std::max(1, static_cast<int>(std::bit_width(ticks - 1)));
}

/// Quantiser matrices, for pictures within themselves and others; a 0 ends one early.
void skipMatrices(BitReader &bits)
{
    for (int matrix = 0; matrix < 2; ++matrix) {
        if (!bits.readFlag()) continue;
        for (int left = 64; left > 0 && bits.read(8) != 0; --left) {}
    }
}

void readVideoObjectLayer(Bytes section, Mpeg4Features &features)
{
    constexpr std::uint32_t kExtendedAspect = 15;
    constexpr std::uint32_t kRectangle = 0;
    constexpr std::uint32_t kStaticSprite = 1;
    constexpr std::uint32_t kGlobalMotion = 2;

    BitReader bits(section);
    bits.skip(1 + 8); // random access, object type
    std::uint32_t version = 1;
    if (bits.readFlag()) {
        version = bits.read(4);
        bits.skip(3);
    }
    if (bits.read(4) == kExtendedAspect) bits.skip(16);
    if (bits.readFlag()) skipVolControl(bits);
    if (bits.read(2) != kRectangle) return; // no player has ever met one
    bits.skip(1);
    const std::uint32_t ticks = bits.read(16);
    bits.skip(1);
    if (bits.readFlag()) bits.skip(timeBits(ticks)); // fixed rate
    bits.skip(1 + 13 + 1 + 13 + 1);                  // width and height between markers
    features.interlaced = bits.readFlag();
    bits.skip(1); // overlapped motion
    const std::uint32_t sprite = bits.read(version == 1 ? 1 : 2);
    features.globalMotion = sprite == kGlobalMotion;
    if (sprite == kStaticSprite) return;
    if (sprite == kGlobalMotion) bits.skip(6 + 2 + 1); // points, accuracy, brightness
    if (bits.readFlag()) bits.skip(4 + 4);             // not 8 bits
    if (bits.readFlag()) skipMatrices(bits);
    features.quarterPixel = version != 1 && bits.readFlag();
}

/// The encoder signs with "DivX", its version and build, and a 'p' when it packs pictures.
bool isSignedAsPacked(std::string_view text)
{
    if (!text.starts_with("DivX")) return false;
    return text.substr(0, text.find('\0')).ends_with('p');
}

} // namespace

Mpeg4Features readMpeg4Features(Bytes extradata)
{
    Mpeg4Features features;
    readVideoObjectLayer(findSection(extradata, kFirstVideoObjectLayer, kLastVideoObjectLayer),
                         features);
    for (Bytes data = findSection(extradata, kUserData, kUserData); !data.empty();
         data = findSection(data, kUserData, kUserData))
        features.packedBitstream |=
            isSignedAsPacked({reinterpret_cast<const char *>(data.data()), data.size()});
    return features;
}

} // namespace vornak::tool

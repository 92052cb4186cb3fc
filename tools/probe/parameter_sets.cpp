#include "tools/probe/parameter_sets.h"

#include "tools/probe/bit_reader.h"

#include <algorithm>
#include <vector>

namespace vornak::tool {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kLargestSide = 4096; // macroblocks; no level has room for more

struct SequenceParameters {
    int level = 0;
    std::uint32_t referenceFrames = 0;
    std::uint32_t macroblocks = 0; ///< of a frame
};

constexpr struct {
    int level;
    std::uint32_t bufferMacroblocks; ///< that the decoded picture buffer holds
} s_Levels[] = {
    {9, 396}, // 1b
    {10, 396},    {11, 900},    {12, 2376},   {13, 2376},   {20, 2376},   {21, 4752},  {22, 8100},
    {30, 8100},   {31, 18000},  {32, 20480},  {40, 32768},  {41, 32768},  {42, 34816}, {50, 110400},
    {51, 184320}, {52, 184320}, {60, 696320}, {61, 696320}, {62, 696320},
};

/// How a codec's units begin, each behind a start code.
struct UnitHeader {
    std::uint8_t typeMask, sequenceParameterSet; // of the first byte
    std::size_t size;
};

constexpr UnitHeader kH264Unit = {0x1F, 7, 1};
constexpr UnitHeader kHevcUnit = {0x7E, 33 << 1, 2};

/// The sequence parameter set among units with start codes, up to the end of all.
Bytes findAfterStartCode(Bytes units, UnitHeader header)
{
    for (std::size_t i = 0; i + 3 + header.size < units.size(); ++i)
        if (units[i] == 0 && units[i + 1] == 0 && units[i + 2] == 1 &&
            (units[i + 3] & header.typeMask) == header.sequenceParameterSet)
            return units.subspan(i + 3 + header.size);
    return {};
}

/// The first parameter set of an avcC box, the unit's header byte excluded.
Bytes findInBox(Bytes box)
{
    constexpr std::size_t kHeader = 6; // five bits of the last byte say how many sets follow
    if (box.size() < kHeader + 3 || (box[kHeader - 1] & 0x1F) == 0) return {};
    const std::size_t size = static_cast<std::size_t>(box[kHeader]) << 8 | box[kHeader + 1];
    const Bytes unit = box.subspan(kHeader + 2).first(std::min(box.size() - kHeader - 2, size));
    return unit.empty() ? unit : unit.subspan(1);
}

void skipScalingList(BitReader &bits, int size)
{
    int last = 8;
    int next = 8;
    for (int i = 0; i < size && next != 0; ++i) {
        next = (last + bits.readSigned() % 256 + 256) % 256;
        if (next != 0) last = next;
    }
}

void skipChromaFormat(BitReader &bits)
{
    const bool is444 = bits.readUnsigned() == 3;
    if (is444) bits.skip(1); // separate planes
    bits.readUnsigned();     // bit depths
    bits.readUnsigned();
    bits.skip(1); // lossless bypass
    if (!bits.readFlag()) return;
    for (int list = 0; list < (is444 ? 12 : 8); ++list)
        if (bits.readFlag()) skipScalingList(bits, list < 6 ? 16 : 64);
}

void skipPictureOrder(BitReader &bits)
{
    const std::uint32_t type = bits.readUnsigned();
    if (type == 0) bits.readUnsigned();
    if (type != 1) return;
    bits.skip(1);
    bits.readSigned();
    bits.readSigned();
    for (std::uint32_t left = bits.readUnsigned(); left > 0 && !bits.pastEnd(); --left)
        bits.readSigned();
}

bool hasChromaFormat(std::uint32_t profile)
{
    constexpr std::uint32_t profiles[] = {44,  83,  86,  100, 110, 118, 122,
                                          128, 134, 135, 138, 139, 244};
    return std::ranges::find(profiles, profile) != std::end(profiles);
}

/// Zeros when the set ends too early or can't be right.
SequenceParameters readParameters(Bytes unit)
{
    const std::vector<std::uint8_t> bytes = unescape(unit);
    BitReader bits(bytes);
    SequenceParameters parameters;
    const std::uint32_t profile = bits.read(8);
    const bool constraint3 = (bits.read(8) & 0x10) != 0;
    const int level = static_cast<int>(bits.read(8));
    bits.readUnsigned(); // the set's number
    if (hasChromaFormat(profile)) skipChromaFormat(bits);
    bits.readUnsigned(); // bits of a frame number
    skipPictureOrder(bits);
    parameters.referenceFrames = bits.readUnsigned();
    bits.skip(1); // gaps
    const std::uint32_t width = bits.readUnsigned() + 1;
    const std::uint32_t height = bits.readUnsigned() + 1; // of a field, unless all are frames
    const std::uint32_t frameHeight = bits.readFlag() ? height : 2 * height;
    if (bits.pastEnd() || width > kLargestSide || height > kLargestSide) return {};
    parameters.macroblocks = width * frameHeight;
    const bool isLevel1b = level == 11 && constraint3 && !hasChromaFormat(profile);
    parameters.level = isLevel1b ? 9 : level;
    return parameters;
}

} // namespace

bool hasTooManyReferences(Bytes extradata)
{
    if (extradata.empty()) return false;
    const bool isBox = extradata.front() == 1;
    const auto parameters =
        readParameters(isBox ? findInBox(extradata) : findAfterStartCode(extradata, kH264Unit));
    const auto *level =
        std::ranges::find(s_Levels, parameters.level, [](const auto &row) { return row.level; });
    if (level == std::end(s_Levels) || parameters.macroblocks == 0) return false;
    const std::uint32_t fitting = std::min(level->bufferMacroblocks / parameters.macroblocks, 16U);
    // a picture too large for its level leaves room for none; that is not about references
    return parameters.referenceFrames > std::max(fitting, 1U);
}

bool isHevcFromFields(Bytes extradata)
{
    // in a set as in an MP4 box: a byte of its own, the profile, what it is compatible with
    constexpr int kBeforeSource = 8 + 8 + 32;

    if (extradata.empty()) return false;
    const bool isBox = extradata.front() == 1;
    const std::vector<std::uint8_t> bytes =
        isBox ? std::vector(extradata.begin(), extradata.end())
              : unescape(findAfterStartCode(extradata, kHevcUnit));
    BitReader bits(bytes);
    bits.skip(kBeforeSource);
    const bool progressive = bits.readFlag();
    return bits.readFlag() && !progressive; // both: it changes from picture to picture
}

} // namespace vornak::tool

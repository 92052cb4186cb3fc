#include "tools/probe/hevc_source.h"

#include "tools/probe/bit_reader.h"

namespace vornak::tool {
namespace {

using Bytes = std::span<const std::uint8_t>;

/// The sequence parameter set among units with start codes, up to the end of all.
Bytes findAfterStartCode(Bytes units)
{
    constexpr int kSequenceParameterSet = 33;
    for (std::size_t i = 0; i + 5 < units.size(); ++i)
        if (units[i] == 0 && units[i + 1] == 0 && units[i + 2] == 1 &&
            (units[i + 3] >> 1 & 0x3F) == kSequenceParameterSet)
            return units.subspan(i + 5);
    return {};
}

} // namespace

bool isHevcFromFields(Bytes extradata)
{
    // in a set as in an MP4 box: a byte of its own, the profile, what it is compatible with
    constexpr int kBeforeSource = 8 + 8 + 32;

    if (extradata.empty()) return false;
    const bool isBox = extradata.front() == 1;
    const std::vector<std::uint8_t> bytes = isBox ? std::vector(extradata.begin(), extradata.end())
                                                  : unescape(findAfterStartCode(extradata));
    BitReader bits(bytes);
    bits.skip(kBeforeSource);
    const bool progressive = bits.readFlag();
    return bits.readFlag() && !progressive; // both: it changes from picture to picture
}

} // namespace vornak::tool

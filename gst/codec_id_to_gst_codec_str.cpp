#include "gst/software_decoders.h"
#include "include/vornak.h"

#include <algorithm>
#include <iterator>

namespace vornak {
namespace {

constexpr const char *kHardwareDecoder = "vaapidecode";
// what the hardware takes over
constexpr int s_HardwareCodecs[] = {"h263"_codec, "mpeg4"_codec, "h264"_codec, "vc1"_codec,
                                    "wmv3"_codec};
constexpr int s_HardwareClasses[] = {1, 2, 3, 7, 8, 9, 10};
// source kinds that stay in software
constexpr int s_SoftwareSources[] = {"mpegps"_container, "mpegts"_container};

template <std::size_t Size>
constexpr bool contains(const int (&values)[Size], int value)
{
    return std::find(std::begin(values), std::end(values), value) != std::end(values);
}

constexpr const char *softwareDecoder(int codecId)
{
    const auto *const row = std::lower_bound(
        s_SoftwareDecoders.begin(), s_SoftwareDecoders.end(), codecId,
        [](const DecoderRow &candidate, int id) { return candidate.codecId < id; });
    return row != s_SoftwareDecoders.end() && row->codecId == codecId ? row->element : nullptr;
}

static_assert(std::all_of(std::begin(s_HardwareCodecs), std::end(s_HardwareCodecs),
                          [](int codecId) { return softwareDecoder(codecId) != nullptr; }),
              "hardware decoders replace software decoders");

} // namespace
} // namespace vornak

const char *CodecId_To_GSTCodecStr(int codecId, int sourceKind, int platformClass, int hwDecode)
{
    using namespace vornak;
    if (codecId <= 0) return nullptr;
    if (hwDecode != 0) {
        if (!contains(s_HardwareClasses, platformClass)) return nullptr;
        if (!contains(s_SoftwareSources, sourceKind) && contains(s_HardwareCodecs, codecId))
            return kHardwareDecoder;
    }
    return softwareDecoder(codecId);
}

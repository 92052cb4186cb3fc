// Play exceptions: what players stumble over in a video whose codec, profile and level they take.
#include "platform/registry_names.h"

#include "platform/name_index.h"

namespace vornak {
namespace {

constexpr auto s_PlayExceptionNames = std::to_array<RegistryName>({
    {"interlaced", 1 << 0},
    {"10bit", 1 << 1},
    {"12bit", 1 << 2}, // and more
    {"chroma422", 1 << 3},
    {"chroma444", 1 << 4},
    {"too_many_refs", 1 << 5}, // reference frames, more than the level allows for the size
    {"packed_bitstream", 1 << 6},
    {"vfr", 1 << 7},          // variable frame rate
    {"hdr", 1 << 8},          // PQ or HLG
    {"dolby_vision", 1 << 9}, // without a base layer that others can show
    {"gmc", 1 << 10},
    {"qpel", 1 << 11},
});
static_assert(std::ranges::is_sorted(s_PlayExceptionNames, {}, &RegistryName::id));

constexpr auto s_PlayExceptionAliases = std::to_array<Alias>({
    {"interlace", "interlaced"},
    {"10bits", "10bit"},
    {"hi10p", "10bit"},
    {"12bits", "12bit"},
    {"422", "chroma422"},
    {"4:2:2", "chroma422"},
    {"yuv422", "chroma422"},
    {"444", "chroma444"},
    {"4:4:4", "chroma444"},
    {"yuv444", "chroma444"},
    {"refs", "too_many_refs"},
    {"ref_frames", "too_many_refs"},
    {"reference_frames", "too_many_refs"},
    {"packed", "packed_bitstream"},
    {"variable_frame_rate", "vfr"},
    {"hdr10", "hdr"},
    {"hlg", "hdr"},
    {"pq", "hdr"},
    {"dovi", "dolby_vision"},
    {"global_motion_compensation", "gmc"},
    {"quarterpel", "qpel"},
    {"quarter_pixel", "qpel"},
});

constexpr NameIndex s_PlayExceptionIndex(s_PlayExceptionNames, s_PlayExceptionAliases);

} // namespace

std::span<const RegistryName> playExceptionNames()
{
    return s_PlayExceptionNames;
}

} // namespace vornak

int PlayExceptionNameToID(const char *name, int *bit)
{
    return vornak::findId(vornak::s_PlayExceptionIndex, name, bit);
}

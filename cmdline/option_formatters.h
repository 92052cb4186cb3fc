// How the value of a constraint slot becomes an option, in each of the two dialects.
#pragma once

#include "base/fixed_text.h"

#include <cstdint>

namespace vornak {

constexpr int kSecondDialect = 1;   // TRANSCODE_CONSTRAINT_ST::mode; any other is the first
constexpr int kFormattedSlots = 14; // the slots above hold nothing that an option exists for

/// Slots of a constraint set, and bits of its mask.
enum Slot {
    kSlotVideoProfile,
    kSlotVideoLevel,
    kSlotMaxSize,
    kSlotMinSize,
    kSlotMaxVideoBitrate,
    kSlotMinVideoBitrate,
    kSlotAudioProfile,
    kSlotAudioLevel,
    kSlotMaxChannels,
    kSlotMinChannels,
    kSlotMaxAudioBitrate,
    kSlotMinAudioBitrate,
    kSlotMaxSampleRate,
    kSlotMinSampleRate,
};

constexpr std::uint64_t markOf(int slot)
{
    return std::uint64_t{1} << slot;
}

/// Writes the option of a slot of `kFormattedSlots` into `fragment`, cut where it ends.
/// @return a VORNAK_CMD_… code: not OK for an empty value, or one without the "x" of a size
[[nodiscard]] int formatSlot(int slot, int mode, std::string_view value, FixedText &fragment);

} // namespace vornak

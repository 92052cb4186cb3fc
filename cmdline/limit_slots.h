// The slots of a constraint set: the limit that goes into each, and the options that it becomes.
#pragma once

#include "base/rule_facts.h"

#include <cstdint>
#include <iterator>

namespace vornak {

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
    kSlots // those above hold nothing that an option exists for
};

constexpr std::uint64_t markOf(int slot)
{
    return std::uint64_t{1} << slot;
}

enum class Form {
    Value,  ///< the option, then the value
    Scale,  ///< a size as "WIDTH:HEIGHT"
    Height, ///< of a size, as "HEIGHTp"
    Nothing,
};

struct Option {
    Form form;
    const char *text;
};

inline constexpr struct {
    Slot slot;
    Option first, second; ///< dialect
} s_SlotOptions[] = {
    {kSlotVideoProfile, {Form::Value, " -vprofile "}, {Form::Value, " -vp "}},
    {kSlotVideoLevel, {Form::Value, " -level "}, {Form::Value, " -vlevel "}},
    {kSlotMaxSize, {Form::Scale, " -vf scale="}, {Form::Height, " -s "}},
    {kSlotMinSize, {Form::Scale, " -vf scale="}, {Form::Height, " -s "}},
    {kSlotMaxVideoBitrate, {Form::Value, " -b:v "}, {Form::Value, " -vb "}},
    {kSlotMinVideoBitrate, {Form::Value, " -b:v "}, {Form::Value, " -vb "}},
    {kSlotAudioProfile, {Form::Value, " -aprofile "}, {Form::Nothing, ""}},
    {kSlotAudioLevel, {Form::Value, " -level "}, {Form::Nothing, ""}},
    {kSlotMaxChannels, {Form::Value, " -ac "}, {Form::Value, " -ac "}},
    {kSlotMinChannels, {Form::Value, " -ac "}, {Form::Value, " -ac "}},
    {kSlotMaxAudioBitrate, {Form::Value, " -b:a "}, {Form::Value, " -ab "}},
    {kSlotMinAudioBitrate, {Form::Value, " -b:a "}, {Form::Value, " -ab "}},
    {kSlotMaxSampleRate, {Form::Value, " -ar "}, {Form::Value, " -ar "}},
    {kSlotMinSampleRate, {Form::Value, " -ar "}, {Form::Value, " -ar "}},
};

consteval bool standAtTheirSlots()
{
    for (int i = 0; i < kSlots; ++i)
        if (s_SlotOptions[i].slot != i) return false;
    return std::size(s_SlotOptions) == kSlots;
}
static_assert(standAtTheirSlots());

/// The comparison whose limit goes into a slot.
template <class Comparison>
struct LimitSlot {
    const Comparison &comparison;
    Slot slot;
};

// In the order in which they are recorded.
inline constexpr LimitSlot<AudioComparison> s_AudioLimits[] = {
    {comparisonOf(s_AudioComparisons, "MAXBITRATE"), kSlotMaxAudioBitrate},
    {comparisonOf(s_AudioComparisons, "MINBITRATE"), kSlotMinAudioBitrate},
    {comparisonOf(s_AudioComparisons, "MAXCHANNELS"), kSlotMaxChannels},
    {comparisonOf(s_AudioComparisons, "MINCHANNELS"), kSlotMinChannels},
    {comparisonOf(s_AudioComparisons, "MAXFREQUENCY"), kSlotMaxSampleRate},
    {comparisonOf(s_AudioComparisons, "MINFREQUENCY"), kSlotMinSampleRate},
};
inline constexpr LimitSlot<VideoComparison> s_VideoLimits[] = {
    {comparisonOf(s_VideoComparisons, "MAXWIDTH"), kSlotMaxSize},
    {comparisonOf(s_VideoComparisons, "MINWIDTH"), kSlotMinSize},
    {comparisonOf(s_VideoComparisons, "MAXBITRATE"), kSlotMaxVideoBitrate},
    {comparisonOf(s_VideoComparisons, "MINBITRATE"), kSlotMinVideoBitrate},
};

/// Whether every limit is recorded, except those that no option makes up for.
consteval bool recordAll(const auto &limits, const auto &comparisons)
{
    return std::ranges::all_of(comparisons, [&](const auto &row) {
        const Bound bound = row.first->bound;
        const bool isRecorded = std::ranges::any_of(
            limits, [&](const auto &limit) { return &limit.comparison == &row; });
        return isRecorded != (bound == Bound::Within || bound == Bound::NotWithin ||
                              row.first->unit == Unit::Level);
    });
}
static_assert(recordAll(s_AudioLimits, s_AudioComparisons));
static_assert(recordAll(s_VideoLimits, s_VideoComparisons));

} // namespace vornak

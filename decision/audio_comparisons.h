// What an audio rule compares with a source, in order; the first row that refuses ends the rule.
#pragma once

#include "base/rule_tables.h"
#include "decision/comparison.h"

namespace vornak {

/// The properties of an audio stream, in the order in which hosts pass them.
struct AudioSource {
    int codecId, profileId, level, channels, bitrate, sampleRate;
};

using AudioComparison = Comparison<AudioRule, AudioSource>;

enum AudioRow {
    kAudioProfile,
    kAudioLevel,
    kMaxChannels,
    kMinChannels,
    kMaxAudioBitrate,
    kMinAudioBitrate,
    kMaxSampleRate,
    kMinSampleRate,
    kAudioRows
};

inline constexpr AudioComparison s_AudioComparisons[kAudioRows] = {
    {Bound::Within, "aProfileId", &AudioRule::aProfileId, &AudioSource::profileId},
    {Bound::AtMost, "aLevel", &AudioRule::aLevel, &AudioSource::level},
    {Bound::AtMost, "maxChannels", &AudioRule::maxChannels, &AudioSource::channels},
    {Bound::AtLeast, "minChannels", &AudioRule::minChannels, &AudioSource::channels},
    {Bound::AtMost, "maxBitrate", &AudioRule::maxBitrate, &AudioSource::bitrate},
    {Bound::AtLeast, "minBitrate", &AudioRule::minBitrate, &AudioSource::bitrate},
    {Bound::AtMost, "maxSampleRate", &AudioRule::maxSampleRate, &AudioSource::sampleRate},
    {Bound::AtLeast, "minSampleRate", &AudioRule::minSampleRate, &AudioSource::sampleRate},
};

} // namespace vornak

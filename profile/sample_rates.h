// The sample rates that a limit can have.
#pragma once

namespace vornak {

inline constexpr int s_StandardSampleRates[] = { // Hz, ascending
    8000,  11025, 16000, 22050, 32000,  44056,  44100,  47250,   48000,
    50000, 50400, 88200, 96000, 176400, 192000, 352800, 2822400, 5644800};

/// The standard rate next to `rate`, the higher one from halfway on.
int snapSampleRate(int rate);

} // namespace vornak

#include "profile/sample_rates.h"

namespace vornak {
namespace {

constexpr int s_StandardSampleRates[] = { // Hz, ascending; 0 ends the table
    8000,  11025, 16000, 22050,  32000,  44056,  44100,   47250,   48000, 50000,
    50400, 88200, 96000, 176400, 192000, 352800, 2822400, 5644800, 0};

} // namespace

int snapSampleRate(int rate)
{
    const int *standard = s_StandardSampleRates;
    if (rate <= *standard) return *standard;
    while (*++standard != 0) {
        if (rate > *standard) continue;
        const int below = standard[-1];
        return rate - below < *standard - rate ? below : *standard;
    }
    return standard[-1];
}

} // namespace vornak

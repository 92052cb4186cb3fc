#include "profile/sample_rates.h"

#include <algorithm>
#include <iterator>

namespace vornak {

int snapSampleRate(int rate)
{
    const int *const above = std::ranges::lower_bound(s_StandardSampleRates, rate);
    if (above == std::begin(s_StandardSampleRates)) return *above;
    const int below = above[-1];
    if (above == std::end(s_StandardSampleRates)) return below;
    return rate - below < *above - rate ? below : *above;
}

} // namespace vornak

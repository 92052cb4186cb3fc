#include "tools/probe/bit_rates.h"

#include <algorithm>
#include <limits>

namespace vornak::tool {
namespace {

int clampRate(std::int64_t rate)
{
    return static_cast<int>(std::clamp<std::int64_t>(rate, 1, std::numeric_limits<int>::max()));
}

/// The stream that takes what the others leave, or null.
StreamRate *findTakerOfRest(std::span<StreamRate> streams)
{
    StreamRate *taker = nullptr;
    for (StreamRate &stream : streams) {
        if (stream.stated > 0 || (!stream.isVideo && stream.sampled > 0)) continue;
        if (!taker || (stream.isVideo && !taker->isVideo)) taker = &stream;
    }
    return taker;
}

} // namespace

void settleBitRates(std::span<StreamRate> streams, std::int64_t whole)
{
    StreamRate *taker = findTakerOfRest(streams);
    std::int64_t rest = whole;
    for (StreamRate &stream : streams) {
        stream.estimated = stream.stated <= 0;
        const std::int64_t rate = stream.estimated ? stream.sampled : stream.stated;
        stream.bitrate = clampRate(rate);
        if (&stream != taker) rest -= rate;
    }
    // what the others leave can't be right when it is next to nothing
    if (taker && (rest > taker->sampled / 2 || taker->sampled <= 0))
        taker->bitrate = clampRate(rest);
}

} // namespace vornak::tool

// The bit rates of a file's streams, stated or estimated.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

struct StreamRate {
    std::int64_t stated = 0;  ///< bits per second, as the file has it; 0: not at all
    std::int64_t sampled = 0; ///< of its first packets; 0: unknown
    bool isVideo = false;

    int bitrate = 0; ///< what the others come to, at least 1
    bool estimated = false;
};

/**
 * Fills in each `bitrate`. A stream that states none gets, when it is the only one, what the
 * others leave of the whole; among several the video gets it, since sound is steadier and a
 * sample says more of it.
 * @param whole  bits per second of all streams together; 0: unknown
 */
void settleBitRates(std::span<StreamRate> streams, std::int64_t whole);

} // namespace vornak::tool

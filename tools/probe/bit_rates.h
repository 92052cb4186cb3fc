// The bit rates of a file's streams, stated or estimated.
#pragma once

#include <cstdint>
#include <span>

namespace vornak::tool {

struct StreamRate {
    std::int64_t stated = 0;  ///< bits per second, as the file has it; 0: not at all
    std::int64_t sampled = 0; ///< of some packets; 0: unknown
    bool isVideo = false;

    int bitrate = 0; ///< what the others come to, at least 1
    bool estimated = false;
};

/**
 * Fills in each `bitrate`. A video that states none gets what the others leave of the whole, a
 * sound its sample, since it is steadier; without a sample it gets the rest like a video.
 * @param whole  bits per second of all streams together; 0: unknown
 */
void settleBitRates(std::span<StreamRate> streams, std::int64_t whole);

} // namespace vornak::tool

// The bit rates of a file's streams, stated or estimated.
#pragma once

#include <cstdint>
#include <span>

struct AVFormatContext;
struct AVStream;

namespace vornak::tool {

class MediaFile;

/// In bits per second: by the header, by a count among the tags, or by a codec whose frames are
/// all alike; 0: none.
std::int64_t statedBitrate(const MediaFile &file, const AVStream &stream);

/// Whether libavformat has made the file's duration from the bit rates of the first packets.
bool guessesDuration(const AVFormatContext &context);

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

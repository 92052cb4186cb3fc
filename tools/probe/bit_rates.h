// The bit rates of a file's streams, stated or estimated.
#pragma once

#include <cstdint>
#include <span>

struct AVFormatContext;
struct AVStream;

namespace vornak::tool {

class MediaFile;

struct StreamRate {
    std::int64_t named = 0;   ///< bits per second, as the codec's frames say; 0: they don't
    std::int64_t header = 0;  ///< as headers, tables or tags of the file have it; 0: not at all
    std::int64_t sampled = 0; ///< of some packets; 0: unknown
    bool isVideo = false;

    int bitrate = 0; ///< what the others come to, at least 1
    bool estimated = false;

    std::int64_t stated() const { return named > 0 ? named : header; }
};

/// What is said of a stream, `named` and `header`. An MP3 stream's frames are not asked.
StreamRate statedRate(const MediaFile &file, const AVStream &stream);

/// What the table of a stream lists.
struct StreamTable {
    std::int64_t bytes = 0;
    double seconds = 0;
};

StreamTable readTable(AVStream &stream);

/**
 * Whether what is said of all streams fits a file of that size and duration. Containers add some
 * percent, a header that is wrong is mostly so by far.
 */
bool fitFile(std::span<const StreamRate> streams, double bytes, double seconds);

/// Whether libavformat has made the file's duration from the bit rates of the first packets.
bool guessesDuration(const AVFormatContext &context);

/// Bits per second of all streams together, as a file's size and duration give them.
struct WholeRate {
    std::int64_t rate = 0;      ///< 0: unknown
    double least = 1, most = 1; ///< how many times what was seen of a stream it may have
};

/// Whether what the others leave of the whole agrees with what was seen of the stream that would
/// get it. If not, the file is cut, or has a wrong duration, or much in it that isn't played.
bool isBelievable(const WholeRate &whole, std::span<const StreamRate> streams);

/**
 * Fills in each `bitrate`. A video of which nothing is said gets what the others leave of the
 * whole; beside others a sound gets its sample, since it is steadier, or without one the rest.
 * Where the whole isn't believable, each gets its sample.
 */
void settleBitRates(std::span<StreamRate> streams, const WholeRate &whole);

} // namespace vornak::tool

// A look at some packets of a file, for what its headers don't say.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

struct AVFormatContext;

namespace vornak::tool {

struct SampledStream {
    std::int64_t bytes = 0;
    double seconds = 0;              ///< that these bytes last
    std::vector<std::int64_t> times; ///< of the packets, in the order of their presentation
    bool interlaced = false;         ///< an H.264 stream that is, by its first pictures
    unsigned rateCodes = 0;          ///< bit n: an MP3 frame says that its bit rate is the nth
};

constexpr int kAnyNumber = std::numeric_limits<int>::max();

struct SampleSize {
    int packets;
    std::int64_t bytes;
};

struct PacketSample {
    std::vector<SampledStream> streams; ///< one entry a stream
    bool isWhole = false;               ///< the file has no more than that
};

/// Reads on from where the file stands, until it has one or the other of `most`.
PacketSample samplePackets(AVFormatContext &context, SampleSize most);

/**
 * Sums over several places, as far from each other in the file's last `bytes` bytes, or else in
 * its time: films and songs often begin with silence. Times and fields are not looked at, and
 * there is nothing where the file can't be sought in.
 * @param bytesEach  how much a place has, or less so that places don't overlap
 */
std::vector<SampledStream> samplePlaces(AVFormatContext &context, std::int64_t bytes,
                                        std::int64_t bytesEach);

} // namespace vornak::tool

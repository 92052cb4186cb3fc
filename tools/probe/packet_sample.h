// A look at some packets of a file, for what its headers don't say.
#pragma once

#include "tools/probe/frame_rate.h"

#include <cstdint>
#include <limits>
#include <vector>

struct AVFormatContext;
struct AVStream;

namespace vornak::tool {

struct SampledStream {
    std::int64_t bytes = 0;
    std::int64_t end = 0; ///< where in the file the last of them is; not for places
    int packets = 0;
    double seconds = 0;              ///< that these bytes last
    std::vector<PictureTimes> times; ///< a run for each place, without a picture missing
    bool interlaced = false;         ///< an H.264 stream that is, by its first pictures
    unsigned rateCodes = 0;          ///< bit n: an MP3 frame says that its bit rate is the nth
};

constexpr int kAnyNumber = std::numeric_limits<int>::max();

struct SampleSize {
    int packets;
    std::int64_t bytes;
};

struct PacketSample {
    std::vector<SampledStream> streams; ///< one entry a stream, or none at all
    double begin = 0;                   ///< seconds in the file, of the first packet
    bool isComplete = false;            ///< the file has no more; of places: each had something

    std::int64_t bytes() const; ///< of all streams
    const SampledStream &of(const AVStream &stream) const;
};

/// Whether places are looked for by bytes, since a file's frames are found again from any of them.
/// The others know their times.
bool isSoughtByBytes(const AVFormatContext &context);

/// Reads on from where the file stands, until it has one or the other of `most`.
PacketSample samplePackets(AVFormatContext &context, SampleSize most);

/// Where places are looked for, as far from each other.
struct Stretch {
    std::int64_t bytes; ///< the file's last, where that can be sought in by bytes
    double seconds;     ///< of the whole file, where it can't; 0: unknown
};

/**
 * Sums over several places: films and songs often begin with silence. Fields are not looked at,
 * and there is nothing where most of the file can't be sought in.
 * @param bytesEach  how much a place has, or less so that places don't overlap
 */
PacketSample samplePlaces(AVFormatContext &context, Stretch stretch, std::int64_t bytesEach);

} // namespace vornak::tool

// What the header of a file and some of its packets say: the bit rates of its streams, how long it
// lasts, and whether its pictures come at a steady pace.
#pragma once

#include "tools/probe/bit_rates.h"
#include "tools/probe/packet_sample.h"

#include <vector>

struct AVFormatContext;
struct AVStream;

namespace vornak::tool {

class MediaFile;

struct Survey {
    MediaFile &file;
    AVFormatContext &context;
    std::vector<AVStream *> played;
    std::vector<StreamRate> rates; ///< one for each of them
    double duration = 0;           ///< seconds; 0: unknown
    PacketSample start, places;    ///< what was read of the file
};

/// Reads packets for what the header leaves open, and at none when there is nothing.
Survey surveyFile(MediaFile &file);

/// Video and audio, in the file's order. Covers are neither.
std::vector<AVStream *> playedStreams(const AVFormatContext &context);

/// The video that is played, or null.
AVStream *firstVideo(const std::vector<AVStream *> &played);

bool hasVariableFrameRate(const Survey &survey);

} // namespace vornak::tool

// What a server needs beside the decision: subtitles, the hardware transcoder, element names.
#pragma once

#include "tools/decide/decision.h"
#include "tools/probe/subtitle_search.h"

namespace vornak::tool {

struct SeenFile;

struct Surroundings {
    SubtitleSearch subtitles;        ///< of a video
    bool ruleAllowsHardware = false; ///< the chosen video rule has VATRANSCODE
    int hardwareAgent = 0;           ///< as isVATranscodeExist() returns it

    // GStreamer's; null: there is none, or none is needed
    const char *demuxer = nullptr;
    const char *videoDecoder = nullptr;
    const char *audioDecoder = nullptr;
    const char *muxer = nullptr; ///< of the output

    bool hardwareServes() const { return ruleAllowsHardware && hardwareAgent > 0; }
};

/// @param hardwareAgent  asked once for all files, since it takes processes
Surroundings lookAround(const SeenFile &file, const Decision &decision, int hardwareAgent);

} // namespace vornak::tool

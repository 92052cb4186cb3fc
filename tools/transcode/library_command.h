// What the library has a transcoder do about a file, and what the host announces of the output.
#pragma once

#include "tools/decide/decision.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace vornak::tool {

/// The library's estimate of a linear PCM output.
struct PcmEstimate {
    int seconds = 0; ///< the source's duration, rounded
    std::int64_t bytes = 0;
    int headerBytes = 0;
    std::int64_t frames = 0; ///< samples a channel
};

struct LibraryCommand {
    std::string options; ///< container, video and audio
    int dialect = 1;     ///< of the limits, 1 or 2
    std::string limits;  ///< that the source exceeds, each with a blank before it
    std::string tag;     ///< target format tag
    const char *mime = nullptr;
    const char *dlnaProfile = nullptr;
    int frame = 0;                  ///< the video rule's frame value; 0 for music
    bool hardwareAllowed = false;   ///< by the video rule
    std::optional<PcmEstimate> pcm; ///< of music that becomes linear PCM
};

/// Whether there is anything to do: the file is neither sent as it is nor refused.
bool needsCommand(const Decision &decision);

/**
 * Asks the library. Any thread, but the calling one must be the only one to divert standard error,
 * where the library comments on the limits.
 * @param decision  of a file that needsCommand()
 * @return the command, or why the profile gives none
 */
std::variant<LibraryCommand, std::string> makeCommand(const Decision &decision, int dialect);

/// The estimate for music that is transcoded; none where the library refuses it.
std::optional<PcmEstimate> estimatePcm(const Decision &decision);

} // namespace vornak::tool

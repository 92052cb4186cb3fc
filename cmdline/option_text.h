// The pieces that the option texts of music and video files share.
#pragma once

#include "base/rule_tables.h"

#include <string_view>

namespace vornak {

inline std::string_view orEmpty(const char *text)
{
    return text ? std::string_view(text) : std::string_view();
}

/// How the audio is made: as the rule says, or copied.
inline std::string_view audioOption(const AudioRule &rule, int audioIndex)
{
    if (!isTranscoded(audioIndex) || rule.aCodecId == kAnyCodec) return "-c:a copy";
    return orEmpty(rule.option);
}

/// How the video is made. @param force  take the rule's options though the video is kept
inline std::string_view videoOption(const VideoRule &rule, int videoIndex, bool force)
{
    const bool made = isTranscoded(videoIndex) && rule.vCodecId != kAnyCodec;
    return made || force ? orEmpty(rule.option) : "-c:v copy";
}

} // namespace vornak

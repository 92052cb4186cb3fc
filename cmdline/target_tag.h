// The target format tag: what an output is, in the registry's names.
#pragma once

#include "include/vornak.h"

namespace vornak {

/// Writes "codec_profile.container-subtype". False where the registry can't name an id; the tag
/// then ends before it.
[[nodiscard]] bool writeMusicTag(const TRANSCODE_AUDIO_MAPPING_ST &rule, int formatId, char *tag);

/// Writes "codec_profile_codec_profile.container.brand", video before audio; fails likewise.
[[nodiscard]] bool writeVideoTag(const TRANSCODE_VIDEO_MAPPING_ST &video,
                                 const TRANSCODE_AUDIO_MAPPING_ST &audio, int formatId, char *tag);

} // namespace vornak

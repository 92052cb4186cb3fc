// What a media file holds, found out in this process.
#pragma once

#include "tools/probe/media_info.h"

#include <optional>
#include <string>
#include <string_view>

namespace vornak::tool {

struct ProbeResult {
    std::optional<MediaInfo> media; ///< none: see `error`
    std::string_view code;          ///< of the error: "cannot-open" or "cannot-probe"
    std::string error; ///< what the file is or does instead, after its name in a sentence
};

/**
 * Reads the file's headers and some seconds of its packets. Any thread, many at once; writes
 * nothing. `path` is the name of a file whatever it looks like, never a URL or a pattern, and no
 * other file is opened, also if this one points to others.
 */
ProbeResult probeMedia(const std::string &path);

/// Who tells: what another version says of the same file may be something else.
std::string probeVersion();

} // namespace vornak::tool

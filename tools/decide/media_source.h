// Where the media of decisions comes from: the files themselves, or lines that stand in for them.
#pragma once

#include "tools/files/media_list.h"
#include "tools/probe/media_probe.h"
#include "tools/probe/subtitle_search.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vornak::tool {

/// A file as far as a decision and its text need it.
struct SeenFile {
    std::string path;
    ProbeResult probe;
    std::optional<SubtitleSearch> beside; ///< none: nobody has looked yet

    SubtitleSearch subtitles() const;
};

class MediaSource {
public:
    /// Looks at a file, once. Any thread, many at once. Throws for a line that is none.
    using Look = std::function<SeenFile()>;

    virtual ~MediaSource() = default;

    /// The next file, or none at the end. One thread at a time.
    virtual std::optional<Look> next() = 0;

    /// What folders held that is no media; at the end.
    virtual std::size_t skipped() const = 0;
};

/// Lists and lines that are called "-" come from standard input. Throws std::runtime_error.
std::unique_ptr<MediaSource> openMedia(const MediaNames &media);

/// What is seen of a file that was named, whatever it is.
SeenFile seeFile(const std::string &path);

/// What the only line of a file of lines says. Throws std::runtime_error.
SeenFile seeOnlyLine(const std::string &probed);

} // namespace vornak::tool

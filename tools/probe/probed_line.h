// What is known of a file before anything is decided, as a line of JSON that stands in for the
// file. docs/collections.md describes it.
#pragma once

#include "tools/probe/media_probe.h"
#include "tools/probe/subtitle_search.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vornak::tool {

/// What all lines begin with.
inline constexpr std::string_view kLineStart = R"({"document":"vornak-probe",)";

/// By what a file is known to be what it was.
struct FileState {
    std::int64_t size = 0;    ///< bytes
    std::int64_t changed = 0; ///< its last change of any kind, in ns since 1970
};

struct ProbedFile {
    std::string path;
    std::optional<FileState> state; ///< none: the file isn't there
    std::size_t skipped = 0; ///< names that folders were found to hold, since the file before, and
                             ///< that are no media
    ProbeResult probe;
    std::optional<SubtitleSearch> subtitles; ///< beside a video
};

/// A line in the parts that come of different sources; they follow each other, `skipped` behind the
/// first.
struct LineParts {
    std::string_view file;  ///< which, in what state, and who probed it
    std::string_view media; ///< what it holds, or why that is unknown
    std::string_view beside;
};

/// The three parts anew.
std::string filePart(const std::string &path, const std::optional<FileState> &state);
std::string mediaPart(const ProbeResult &probe);
/// @param folderChanged  when the folder of a video was changed, as FileState has it; none: unknown
std::string besidePart(const std::optional<SubtitleSearch> &subtitles,
                       std::optional<std::int64_t> folderChanged);

/// What the third part begins with.
std::string besideStart(std::optional<std::int64_t> folderChanged);

/// The whole line with its end.
std::string joinLine(const LineParts &parts, std::size_t skipped);

/// The parts of a line without its end; none: vornak probe writes it otherwise. They need not be
/// right.
std::optional<LineParts> splitLine(std::string_view line);

/// Whether the second part is of a file that could be opened.
bool isOpened(std::string_view mediaPart);

/// Reads a line without its end. Throws std::runtime_error with what is wrong.
ProbedFile readLine(std::string_view line);

} // namespace vornak::tool

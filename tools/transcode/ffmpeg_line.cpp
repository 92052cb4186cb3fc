#include "tools/transcode/ffmpeg_line.h"

#include "tools/decide/decision.h"
#include "tools/transcode/library_command.h"
#include "tools/transcode/stock_options.h"

#include <filesystem>
#include <fmt/format.h>
#include <string_view>

namespace vornak::tool {
namespace {

struct Extension {
    int formatId;
    std::string_view name;
};

constexpr Extension s_Extensions[] = {
    // with a subtype, where that has an extension of its own
    {12 | 1 << 16, "webm"},
    {8 | 1 << 16, "m4a"},
    {8 | 2 << 16, "m4v"},
    {8 | 4 << 16, "mov"},
    {8 | 8 << 16, "3g2"},
    {8 | 9 << 16, "3gp"},
    {8 | 11 << 16, "mov"},
    // containers
    {1, "mp3"},
    {2, "wav"},
    {3, "flac"},
    {4, "ape"},
    {5, "ogg"},
    {6, "ac3"},
    {7, "asf"},
    {8, "mp4"},
    {9, "avi"},
    {10, "mpg"},
    {11, "ts"},
    {12, "mkv"},
    {13, "flv"},
    {14, "aiff"},
    {15, "au"},
    {16, "aac"},
    {17, "mpg"},
    {18, "ts"},
    {19, "mpg"},
    {20, "ts"},
    {21, "rm"},
};

std::string_view extensionOf(int formatId)
{
    for (const int id : {formatId, formatId & 0xFFFF})
        for (const Extension &row : s_Extensions)
            if (row.formatId == id) return row.name;
    return "out";
}

} // namespace

std::vector<std::string> ffmpegArguments(const std::string &media, const Decision &decision,
                                         const TranscodeCommand &command)
{
    std::vector<std::string> words = {"-i", fileUrl(media)};
    if (decision.isVideo) words.insert(words.end(), {"-map", "0:V:0"});
    if (decision.track >= 0)
        words.insert(words.end(), {"-map", fmt::format("0:a:{}", decision.track)});
    const std::vector<std::string> options =
        stockArguments(command.limits, command.options, decision.outputFormatId);
    words.insert(words.end(), options.begin(), options.end());
    return words;
}

std::string fileUrl(const std::string &path)
{
    return "file:" + path;
}

std::string outputName(const std::string &media, int formatId)
{
    const std::filesystem::path path(media);
    return path.parent_path() /
           fmt::format("{}.transcoded.{}", path.stem().string(), extensionOf(formatId));
}

} // namespace vornak::tool

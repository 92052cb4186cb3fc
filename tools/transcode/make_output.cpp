#include "tools/transcode/make_output.h"

#include "tools/terminal/child.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_line.h"
#include "tools/transcode/ffmpeg_report.h"
#include "tools/transcode/ffmpeg_run.h"

#include <fmt/format.h>

namespace vornak::tool {
namespace {

std::vector<std::string> commandLine(const std::string &ffmpeg, const DecidedFile &file,
                                     const LibraryCommand &command, const std::string &output)
{
    std::vector<std::string> words = {ffmpeg,  "-hide_banner", "-nostdin", "-nostats", "-v",
                                      "error", "-progress",    "pipe:1",   "-y"};
    for (std::string &word : ffmpegArguments(file.path, file.decision, command))
        words.push_back(std::move(word));
    words.push_back(fileUrl(output));
    return words;
}

int runToEnd(const std::vector<std::string> &words, const std::string &media, double duration)
{
    FfmpegProgress progress(duration);
    const FfmpegEnd end = runFfmpeg(words, progress);
    if (end.interruption != 0) {
        complain(fmt::format("{}: interrupted, no output is left", printable(media)));
        return kSignalled + end.interruption;
    }
    if (end.status == 0) return kDone;
    for (const std::string &line : end.lastLines)
        complain(fmt::format("{}: {}", printable(words.front()), line));
    complain(fmt::format("{}: {} failed with exit status {}", printable(media),
                         printable(words.front()), end.status));
    return kIncomplete;
}

} // namespace

int makeOutput(const std::string &ffmpeg, const DecidedFile &file, const LibraryCommand &command,
               const std::string &output)
{
    return runToEnd(commandLine(ffmpeg, file, command, output), file.path,
                    file.decision.media.duration);
}

int copyOutput(const std::string &media, const std::string &output)
{
    return runToEnd({"cp", "--", media, output}, media, 0);
}

} // namespace vornak::tool

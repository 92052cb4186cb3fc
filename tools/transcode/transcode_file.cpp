#include "tools/transcode/transcode_file.h"

#include "tools/decide/explanation.h"
#include "tools/decide/reason_text.h"
#include "tools/probe/media_probe.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_line.h"
#include "tools/transcode/ffmpeg_progress.h"
#include "tools/transcode/ffmpeg_run.h"

#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr int kSignalled = 128; // added to a signal's number, as the shell does

void appendPart(std::string &text, std::string_view name, const std::string &reasons)
{
    if (!text.empty()) text += "; ";
    text += fmt::format("{}: {}", name, reasons);
}

std::vector<std::string> commandLine(const std::string &ffmpeg, const std::string &media,
                                     const Decision &decision, const TranscodeCommand &command,
                                     const std::string &output)
{
    std::vector<std::string> words = {ffmpeg,  "-hide_banner", "-nostdin", "-nostats", "-v",
                                      "error", "-progress",    "pipe:1",   "-y"};
    for (std::string &word : ffmpegArguments(media, decision, command))
        words.push_back(std::move(word));
    words.push_back(fileUrl(output));
    return words;
}

int runToEnd(const std::vector<std::string> &words, const std::string &media, double duration)
{
    TranscodeProgress progress(duration);
    const TranscoderEnd end = runTranscoder(words, progress);
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

FileResult probeAndDecide(const ProfileSession &session, const DecisionRequest &request,
                          const std::string &path)
{
    ProbeResult probe = probeMedia(path);
    if (!probe.media) return Undecided{"cannot-probe", probe.error};
    return decide(session, request, std::move(*probe.media));
}

std::string reasonsOf(const Decision &decision, const DecisionRequest &request,
                      const ProfileSession &session)
{
    const Explanation why = explain(decision, request);
    std::string text;
    if (why.video.action == Action::Transcode)
        appendPart(text, "video", videoReasons(decision, why.video, session));
    if (why.audio.action == Action::Transcode)
        appendPart(text, "audio", audioReasons(decision, why.audio, session));
    if (decision.containerChanges)
        appendPart(text, "container", containerReasons(decision, why.container, session));
    return text;
}

int transcode(const std::string &ffmpeg, const std::string &media, const Decision &decision,
              const TranscodeCommand &command, const std::string &output)
{
    return runToEnd(commandLine(ffmpeg, media, decision, command, output), media,
                    decision.media.duration);
}

int copy(const std::string &media, const std::string &output)
{
    return runToEnd({"cp", "--", media, output}, media, 0);
}

} // namespace vornak::tool

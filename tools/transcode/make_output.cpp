#include "tools/transcode/make_output.h"

#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_line.h"
#include "tools/transcode/ffmpeg_report.h"
#include "tools/transcode/ffmpeg_run.h"
#include "tools/transcode/stream_ends.h"
#include "tools/transcode/work_file.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <optional>

namespace vornak::tool {
namespace {

using Words = std::vector<std::string>;

/// What the program writes to.
std::string urlFor(const Making &making)
{
    if (!making.work) return "pipe:1";
    const std::string path = fmt::format("{}/{}", FfmpegRun::kFolder, WorkFile::kName);
    return making.command ? fileUrl(path) : path;
}

Words copyLine(const Making &making)
{
    if (!making.work) return {"cat", "--", making.file.path};
    return {"cp", "--", making.file.path, urlFor(making)};
}

// Its own options come last, where they count whatever the profile's OPTION says.
Words ffmpegLine(const Making &making)
{
    Words words = {making.program, "-nostdin"};
    for (std::string &word :
         ffmpegArguments(making.file.path, making.file.decision, *making.command))
        words.push_back(std::move(word));
    words.insert(words.end(), {"-hide_banner", "-nostats", "-v", "repeat+error", "-progress",
                               FfmpegRun::kProgressUrl, "-y", urlFor(making)});
    return words;
}

FfmpegRun runFor(const Making &making)
{
    FfmpegRun run;
    run.command = making.command ? ffmpegLine(making) : copyLine(making);
    if (making.work)
        run.folder = making.work->folder();
    else
        run.standardOutput = standardOutput();
    return run;
}

/// Says it with the program's last words.
int failWith(const FfmpegRun &run, const FfmpegReport &report, const std::string &path,
             std::string_view why)
{
    for (const std::string &line : report.messages())
        complain(fmt::format("{}: {}", printable(run.command.front()), line));
    return complainOf(path, why);
}

int endOf(const Making &making, const FfmpegRun &run, const FfmpegEnd &end,
          const FfmpegReport &report)
{
    const std::string program = printable(run.command.front());
    const auto fail = [&](const std::string &why) {
        return failWith(run, report, making.file.path, program + why);
    };
    if (end.interruption != 0) return sayInterrupted(making, end.interruption);
    if (end.signal != 0) return fail(fmt::format(" was ended by SIG{}", sigabbrev_np(end.signal)));
    if (end.status != 0) return fail(fmt::format(" failed with exit status {}", end.status));
    if (report.couldNotWrite())
        return failWith(run, report, making.output,
                        "could not be written whole, so it is not made");
    if (making.work && making.work->isEmpty()) return fail(" wrote no output");
    return kDone;
}

/// Whether the options ask for an output of another length than the source.
bool changeLength(const Words &words)
{
    constexpr std::string_view kOptions[] = {
        "-t",  "-to", "-ss",      "-sseof",    "-fs",       "-frames:v", "-vframes",
        "-vn", "-an", "-aframes", "-frames:a", "-shortest", "-itsscale"};
    constexpr std::string_view kFilters[] = {"trim",     "setpts", "tempo",
                                             "asetrate", "select", "silenceremove"};
    return std::ranges::any_of(words, [&](const std::string &word) {
        return std::ranges::count(kOptions, word) > 0 ||
               std::ranges::any_of(kFilters, [&](std::string_view filter) {
                   return word.find(filter) != std::string::npos;
               });
    });
}

/// Whether the output is bare samples, which nothing can be read from but by who knows them.
bool isBare(const Words &words)
{
    constexpr std::string_view kFormats[] = {"s8",    "u8",    "s16le", "s16be", "s24le",
                                             "s24be", "s32le", "s32be", "f32le", "f32be",
                                             "f64le", "f64be", "alaw",  "mulaw"};
    return std::ranges::any_of(
        kFormats, [&](std::string_view format) { return std::ranges::count(words, format) > 0; });
}

/// What the output lacks at its end.
struct Lack {
    const char *what;  ///< "picture"
    double has, wants; ///< seconds
};

// Seconds by which sound outputs end earlier: a packet's length, or two.
constexpr double kSlack = 0.5;
constexpr double kSlackOfSource = 1, kShareOfSource = 0.01; // whose times are less exact

/// Against the source. Its times may not start anew, and its gaps be kept.
std::optional<Lack> findLack(const StreamEnds &source, const StreamEnds &output)
{
    if (!output.isRead || source.hasBreaks || (source.hasTimes && !output.hasTimes))
        return std::nullopt;
    const Lack picture = {"picture", output.video, source.video - source.start};
    const Lack sound = {"sound", output.audio, source.audio - source.start};
    for (const Lack &lack : {picture, sound})
        if (std::max(lack.has, 0.0) <
            lack.wants - std::max(kSlackOfSource, lack.wants * kShareOfSource))
            return lack;
    return std::nullopt;
}

/// As ffmpeg counts: the muxers of MPEG begin with a time of their own.
std::optional<StreamEnds> endsOfOutput(const Making &making)
{
    constexpr double kMostLead = 1.5;
    auto ends = findStreamEnds(making.work->path(), making.file.decision.track < 0 ? -1 : 0);
    if (!ends || !ends->hasBreaks) return ends;
    const double lead = std::min(ends->start, kMostLead);
    ends->video -= lead;
    ends->audio -= lead;
    return ends;
}

/// Says that the source ends early. Returns the exit status.
int sayEndsEarly(const Making &making, const Lack &lack)
{
    const std::string of = lack.has < lack.wants ? fmt::format(" of {:.1f}", lack.wants) : "";
    complainOf(making.file.path,
               fmt::format("its {} ends early, {:.1f}{} s could be read{}", lack.what, lack.has, of,
                           making.acceptDamaged ? "" : making.advice));
    return making.acceptDamaged ? kDone : kIncomplete;
}

int checkEnds(const Making &making, const FfmpegRun &run, const FfmpegReport &report)
{
    const Decision &decision = making.file.decision;
    const StreamEnds source =
        findStreamEnds(making.file.path, decision.track).value_or(StreamEnds{});
    const Lack whole = {decision.isVideo ? "film" : "sound", report.seconds(), source.stated};
    if (!making.work || isBare(run.command))
        return report.sourceEnded() ? sayEndsEarly(making, whole) : kDone;

    const auto output = endsOfOutput(making);
    if (!output)
        return failWith(run, report, making.output, "can't be read back, so it is not made");
    const double end = std::max(output->video, output->audio);
    if (output->isRead && (output->hasTimes || !source.hasTimes) && end < report.seconds() - kSlack)
        return failWith(run, report, making.output,
                        fmt::format("its last packets are missing, {:.1f} of {:.1f} s are there, "
                                    "so it is not made",
                                    end, report.seconds()));
    if (report.sourceEnded()) return sayEndsEarly(making, whole);
    const auto lack = changeLength(run.command) ? std::nullopt : findLack(source, *output);
    return lack ? sayEndsEarly(making, *lack) : kDone;
}

} // namespace

int makeOutput(const Making &making, const HeldSignals &signals)
{
    const FfmpegRun run = runFor(making);
    FfmpegReport report(making.command ? making.file.decision.media.duration : 0, urlFor(making),
                        making.output);
    const FfmpegEnd end = runFfmpeg(run, signals, report);
    if (const int status = endOf(making, run, end, report); status != kDone) return status;
    if (!making.command) return kDone;
    if (const std::size_t places = report.damagedPlaces(); places > 0)
        complainOf(making.file.path,
                   fmt::format("{} damaged place{}", places, places == 1 ? "" : "s"));
    return checkEnds(making, run, report);
}

int sayInterrupted(const Making &making, int signal)
{
    complainOf(making.file.path, "interrupted, no output is left");
    return kSignalled + signal;
}

} // namespace vornak::tool

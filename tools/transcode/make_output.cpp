#include "tools/transcode/make_output.h"

#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_line.h"
#include "tools/transcode/ffmpeg_report.h"
#include "tools/transcode/ffmpeg_run.h"
#include "tools/transcode/whole_output.h"
#include "tools/transcode/work_file.h"

#include <cstring>
#include <fmt/format.h>

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

std::string signalText(int signal)
{
    const char *const name = sigabbrev_np(signal); // those of real time have none
    return name ? fmt::format("SIG{}", name) : fmt::format("signal {}", signal);
}

/// Why the run has no output at all; empty: it may have one.
std::string failureOf(const FfmpegEnd &end)
{
    if (end.signal != 0) return "was ended by " + signalText(end.signal);
    return end.status != 0 ? fmt::format("failed with exit status {}", end.status) : "";
}

int sayFault(const Making &making, const FfmpegRun &run, const FfmpegReport &report,
             const Fault &fault)
{
    if (!fault.isSources)
        return failWith(run, report, making.output, fault.text + ", so it is not made");
    if (!making.acceptDamaged)
        return failWith(run, report, making.file.path, fault.text + std::string(making.advice));
    complainOf(making.file.path, fault.text);
    return kDone;
}

} // namespace

int makeOutput(const Making &making, const HeldSignals &signals)
{
    const FfmpegRun run = runFor(making);
    FfmpegReport report(making.command ? making.file.decision.media.duration : 0, urlFor(making),
                        making.output);
    const FfmpegEnd end = runFfmpeg(run, signals, report);
    if (end.interruption != 0) return sayInterrupted(making, end.interruption);
    if (const std::string failure = failureOf(end); !failure.empty())
        return failWith(run, report, making.file.path,
                        fmt::format("{} {}", printable(run.command.front()), failure));
    if (const std::size_t places = report.damagedPlaces(); places > 0)
        complainOf(making.file.path,
                   fmt::format("{} damaged place{}", places, places == 1 ? "" : "s"));
    const auto fault = findFault(making, report);
    return fault ? sayFault(making, run, report, *fault) : kDone;
}

int sayInterrupted(const Making &making, int signal)
{
    complainOf(making.file.path, "interrupted, no output is left");
    return kSignalled + signal;
}

} // namespace vornak::tool

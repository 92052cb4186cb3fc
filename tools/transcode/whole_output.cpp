#include "tools/transcode/whole_output.h"

#include "tools/terminal/printable.h"
#include "tools/transcode/ffmpeg_line.h"
#include "tools/transcode/ffmpeg_report.h"
#include "tools/transcode/make_output.h"
#include "tools/transcode/stream_ends.h"
#include "tools/transcode/work_file.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

using Words = std::vector<std::string>;

// Options and filters that make the output another length than the source's, or drop a stream.
constexpr auto s_LengthOptions = std::to_array<std::string_view>(
    {"-t", "-to", "-ss", "-sseof", "-fs", "-frames:v", "-vframes", "-frames:a", "-aframes",
     "-shortest", "-itsscale", "-vn", "-an"});
constexpr auto s_LengthFilters = std::to_array<std::string_view>(
    {"trim", "setpts", "tempo", "asetrate", "select", "silenceremove"});

// Muxers of bare samples, which nobody can read who doesn't know them.
constexpr auto s_BareFormats =
    std::to_array<std::string_view>({"s8", "u8", "s16le", "s16be", "s24le", "s24be", "s32le",
                                     "s32be", "f32le", "f32be", "f64le", "f64be", "alaw", "mulaw"});

template <class Table>
bool hasOneOf(const Words &words, const Table &table)
{
    return std::ranges::find_first_of(words, table) != words.end();
}

bool changeLength(const Words &options)
{
    return hasOneOf(options, s_LengthOptions) ||
           std::ranges::any_of(options, [](std::string_view word) {
               return std::ranges::any_of(s_LengthFilters, [word](std::string_view filter) {
                   return word.find(filter) != std::string_view::npos;
               });
           });
}

/// @param whose  stream: "its sound "; empty: all
Fault endsEarly(std::string_view whose, double has, double wants)
{
    const std::string of = has < wants ? fmt::format(" of {:.1f}", wants) : "";
    return {true, fmt::format("{}ends early, {:.1f}{} s could be read", whose, has, of)};
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

/// Against what ffmpeg says that it has written.
std::optional<Fault> findMissingEnd(const StreamEnds &output, double written)
{
    constexpr double kSlack = 0.5; // whole outputs may end a packet earlier, or two
    const double end = std::max(output.video, output.audio);
    if (end >= written - kSlack) return std::nullopt;
    return Fault{false, fmt::format("its last packets are missing, {:.1f} of {:.1f} s are there",
                                    end, written)};
}

/// Against the source's own packets and index.
std::optional<Fault> findShortStream(const StreamEnds &source, const StreamEnds &output)
{
    constexpr double kSlack = 1, kShare = 0.01; // not all files are exact about their times
    const struct {
        std::string_view whose;
        double has, wants;
    } streams[] = {{"its picture ", output.video, source.video - source.start},
                   {"its sound ", output.audio, source.audio - source.start}};
    for (const auto &[whose, has, wants] : streams)
        if (wants > 0 && has < wants - std::max(kSlack, wants * kShare))
            return endsEarly(whose, has, wants);
    return std::nullopt;
}

std::optional<Fault> findLack(const Making &making, const StreamEnds &source, double written)
{
    const Words options = stockArguments(making.command->limits, making.command->options,
                                         making.file.decision.outputFormatId);
    if (hasOneOf(options, s_BareFormats)) return std::nullopt;
    const auto output = endsOfOutput(making);
    if (!output) return Fault{false, "can't be read back"};
    // A gap in the source is none any more where times are but counted.
    if (!output->isRead || (source.hasTimes && !output->hasTimes)) return std::nullopt;
    if (auto fault = findMissingEnd(*output, written)) return fault;
    if (source.hasBreaks || changeLength(options)) return std::nullopt;
    return findShortStream(source, *output);
}

} // namespace

std::optional<Fault> findFault(const Making &making, const FfmpegReport &report)
{
    if (report.couldNotWrite()) return Fault{false, "could not be written whole"};
    if (making.work && making.work->isEmpty())
        return Fault{false, "was not written by " + printable(making.program)};
    if (!making.command) return std::nullopt;
    const StreamEnds source =
        findStreamEnds(making.file.path, making.file.decision.track).value_or(StreamEnds{});
    auto lack = making.work ? findLack(making, source, report.seconds()) : std::optional<Fault>();
    if (report.sourceEnded() && (!lack || lack->isSources))
        return endsEarly("", report.seconds(), source.stated);
    return lack;
}

} // namespace vornak::tool

// vornak length: how large a PCM output will be, and whether it is.
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/commands/transcoding_options.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/pcm_file.h"
#include "tools/transcode/transcode_file.h"
#include "tools/transcode/work_file.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kLengthHelp =
    R"(Estimates the size of a music file that is transcoded to linear PCM.)";

constexpr const char *kLengthExamples = R"(Examples:
  vornak length -p hifi.xml song.opus
      the size that a server announces before there is any output
  vornak length -p hifi.xml --verify song.opus
      the same, and the size that ffmpeg produces
  vornak length -p hifi.xml --force song.mp3
      the size also where the player takes the file as it is

Exit status: 0 estimated, and the sizes agree; 1 no estimate, or they don't; 2 bad usage or a
profile that can't be loaded.)";

struct LengthOptions : DecisionOptions {
    std::string file;
    std::string ffmpeg = "ffmpeg";
    bool verify = false;
};

/// Why the library makes no estimate.
std::string_view refusalOf(const Decision &decision)
{
    if (decision.isVideo) return "no estimate, it is a video";
    if (decision.isRefused()) return "no estimate, it is refused";
    if (!decision.transcodesAudio())
        return "no estimate, the sound is not transcoded (--force estimates it all the same)";
    if (decision.media.duration < 0.5) return "no estimate, it is shorter than a second";
    return "no estimate, the rule's OPTION names no PCM of 44100 to 320000 Hz and up to 8 channels "
           "(-c:a, -ar, -ac), or its container's OPTION is not of known size";
}

std::string textOf(const LengthOptions &options, const PcmEstimate &pcm)
{
    return fmt::format("{}: {} bytes for {} s, {} of them the header; {} frames\n",
                       printable(options.file), pcm.bytes, pcm.seconds, pcm.headerBytes,
                       pcm.frames);
}

/// Compares the estimate with a file that ffmpeg made.
int compare(const PcmEstimate &pcm, const std::string &output)
{
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(output));
    const std::int64_t header = headerBytesOf(output);
    const bool agrees = bytes == pcm.bytes;
    writeOut(fmt::format("produced: {} bytes, {} of them the header: {}\n", bytes, header,
                         agrees ? "the sizes agree" : "the sizes differ"));
    if (agrees) return kDone;
    if (header != pcm.headerBytes)
        writeOut(fmt::format("  header: {:+} bytes\n", header - pcm.headerBytes));
    if (const std::int64_t samples = (bytes - header) - (pcm.bytes - pcm.headerBytes); samples != 0)
        writeOut(fmt::format("  samples: {:+} bytes\n", samples));
    return kIncomplete;
}

int verify(const LengthOptions &options, const Decision &decision, const PcmEstimate &pcm)
{
    const auto made = makeCommand(decision, 1);
    if (const auto *problem = std::get_if<std::string>(&made))
        return complainOf(options.file, *problem);
    WorkFile work(std::filesystem::temp_directory_path());
    const int status = transcode(options.ffmpeg, options.file, decision,
                                 std::get<TranscodeCommand>(made), work.path());
    return status == kDone ? compare(pcm, work.path()) : status;
}

int runLength(const LengthOptions &options)
{
    const DecisionRequest request = resolve(options);
    const ProfileSession session(options.profile);
    complainOfWarnings(options.profile, session);

    const FileResult result = probeAndDecide(session, request, options.file);
    if (const auto *undecided = std::get_if<Undecided>(&result))
        return complainOf(options.file, undecided->message);
    const auto &decision = std::get<Decision>(result);
    const auto pcm = decision.isRefused() ? std::nullopt : estimatePcm(decision);
    if (!pcm) return complainOf(options.file, refusalOf(decision));
    writeOut(textOf(options, *pcm));
    return options.verify ? verify(options, decision, *pcm) : kDone;
}

} // namespace

void addLength(CLI::App &app, int &status)
{
    auto options = std::make_shared<LengthOptions>();
    CLI::App *command = app.add_subcommand("length", kLengthHelp);
    addProfileOption(*command, options->profile);
    command->add_option("MEDIA", options->file, "The music file")->required()->type_name("");
    command->add_flag("--verify", options->verify,
                      "Transcode it and compare the size of what comes out");
    addFfmpegOption(*command, options->ffmpeg);
    addMatchingOptions(*command, *options);
    command->add_flag("--force", options->force, "Transcode whatever the rules say");
    command->footer(kLengthExamples);
    command->callback([options, &status] { status = runLength(*options); });
}

} // namespace vornak::tool

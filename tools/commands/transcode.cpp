// vornak transcode: one file, made into what the player takes.
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/commands/transcoding_options.h"
#include "tools/decide/decide_files.h"
#include "tools/decide/reason_text.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/make_output.h"
#include "tools/transcode/work_file.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kTranscodeHelp =
    R"(Transcodes a media file with ffmpeg into what a player takes.)";

constexpr const char *kTranscodeExamples = R"(Examples:
  vornak transcode -p tv.xml film.mkv -o film-for-the-tv.ts --verify
      transcodes what the TV doesn't take, then sees whether it takes the result
  vornak transcode -p tv.xml film.mkv -o film.ts --audio-track 2 --ffmpeg ~/bin/ffmpeg
      with the second audio track, by another ffmpeg

Exit status: 0 done, or nothing to do; 1 refused, undecided, failed or not verified; 2 bad usage, a
profile that can't be loaded or an output that can't be written; 128 and the signal after an
interruption.)";

struct TranscodeOptions : DecisionOptions {
    std::string file;
    std::string output;
    std::string ffmpeg = "ffmpeg";
    int dialect = 1;
    bool replace = false;
    bool copy = false;
    bool verify = false;
};

/// Where the output goes, which isn't where the source is.
std::string findPlace(const TranscodeOptions &options)
{
    std::error_code ignored;
    if (std::filesystem::equivalent(options.file, options.output, ignored))
        throw std::runtime_error(fmt::format("{}: is the file to transcode; name another output",
                                             printable(options.output)));
    return outputPlace(options.output, options.replace);
}

std::string folderOf(const std::string &path)
{
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

int keepAsItIs(const TranscodeOptions &options)
{
    if (!options.copy) {
        complain(fmt::format("{}: needs no transcoding, it is sent as it is (--copy copies it)",
                             printable(options.file)));
        return kDone;
    }
    const std::string place = findPlace(options);
    WorkFile work(folderOf(place));
    if (const int status = copyOutput(options.file, work.path()); status != kDone) return status;
    work.moveTo(place, options.replace);
    writeOut(fmt::format("{}: copied, it is sent as it is\n", printable(options.output)));
    return kDone;
}

/// Sees whether the profile takes the output as it is.
int verify(const TranscodeOptions &options, const ProfileSession &session)
{
    const DecisionRequest request{.matchVideo = !options.noMatchVideo};
    const FileResult result = decideFile(session, request, options.output);
    if (const auto *undecided = std::get_if<Undecided>(&result))
        return complainOf(options.output, "not verified: " + undecided->message);
    const auto &decision = std::get<Decision>(result);
    if (decision.outcome != Outcome::Kept)
        return complainOf(options.output, "not verified, it would not be sent as it is: " +
                                              reasonsOf(decision, request, session));
    writeOut(fmt::format("{}: verified, it is sent as it is\n", printable(options.output)));
    return kDone;
}

int transcodeFile(const TranscodeOptions &options, const DecidedFile &file)
{
    const auto made = makeCommand(file.decision, options.dialect);
    if (const auto *problem = std::get_if<std::string>(&made))
        return complainOf(options.file, *problem);

    const std::string place = findPlace(options);
    WorkFile work(folderOf(place));
    const int status =
        makeOutput(options.ffmpeg, file, std::get<LibraryCommand>(made), work.path());
    if (status != kDone) return status;
    work.moveTo(place, options.replace);
    writeOut(fmt::format("{}: made from {} ({})\n", printable(options.output),
                         printable(options.file), nameOf(file.decision.outcome)));
    return options.verify ? verify(options, file.session) : kDone;
}

int runTranscode(const TranscodeOptions &options)
{
    const auto file = decideOne(options.profile, resolve(options), options.file);
    if (!file) return kIncomplete;
    if (file->decision.isRefused())
        return complainOf(options.file,
                          "refused, NOTRANSCODE forbids to transcode: " +
                              reasonsOf(file->decision, file->request, file->session));
    if (!needsCommand(file->decision)) return keepAsItIs(options);
    return transcodeFile(options, *file);
}

} // namespace

void addTranscode(CLI::App &app, int &status)
{
    auto options = std::make_shared<TranscodeOptions>();
    CLI::App *command = app.add_subcommand("transcode", kTranscodeHelp);
    addProfileOption(*command, options->profile);
    command->add_option("MEDIA", options->file, "The media file")->required()->type_name("");
    command->add_option("-o,--output", options->output, "The file to write")
        ->required()
        ->type_name("OUT");
    command->add_flag("--verify", options->verify,
                      "Decide about the output, too: it is to be sent as it is");
    command->add_flag("--force", options->replace, "Replace an output that exists");
    command->add_flag("--copy", options->copy, "Copy a file that needs no transcoding");
    addFfmpegOption(*command, options->ffmpeg);
    addDialectOption(*command, options->dialect);
    addMatchingOptions(*command, *options);
    command->add_flag("--always", options->DecisionOptions::force,
                      "Transcode whatever the rules say");
    command->footer(kTranscodeExamples);
    command->callback([options, &status] { status = runTranscode(*options); });
}

} // namespace vornak::tool

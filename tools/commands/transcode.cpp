// vornak transcode: one file, made into what the player takes.
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/commands/transcoding_options.h"
#include "tools/decide/decide_files.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/transcode/delivery.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <stdexcept>

namespace vornak::tool {
namespace {

constexpr const char *kTranscodeHelp =
    R"(Transcodes a media file with ffmpeg into what a player takes.)";

constexpr const char *kTranscodeExamples = R"(Examples:
  vornak transcode -p tv.xml film.mkv -o film-for-the-tv.ts --verify
      transcodes what the TV doesn't take, then sees whether it takes the result
  vornak transcode -p tv.xml film.mkv -o film.ts --audio-track 2 --ffmpeg ~/bin/ffmpeg
      with the second audio track, by another ffmpeg

Exit status: 0 the output is there, 1 refused, undecided, failed or not verified, 2 bad usage, a
profile that can't be loaded or a place where no output can go, 3 the file needs no transcoding and
nothing was made, 128 and the signal after an interruption.)";

struct TranscodeOptions : DecisionOptions {
    std::string file;
    Delivery delivery;
};

int runTranscode(const TranscodeOptions &options)
{
    const Delivery &delivery = options.delivery;
    if (delivery.output == "-") {
        if (delivery.verify || delivery.replace)
            throw std::runtime_error("-o -: standard output can't be verified or replaced (leave "
                                     "out --verify and --force)");
        claimStandardOutput();
    }
    const auto file = decideOne(options.profile, requestOf(options), seeFile(options.file));
    return file ? deliver(*file, delivery) : kIncomplete;
}

} // namespace

void addTranscode(CLI::App &app, int &status)
{
    auto options = std::make_shared<TranscodeOptions>();
    CLI::App *command = app.add_subcommand("transcode", kTranscodeHelp);
    addProfileOption(*command, options->profile);
    command->add_option("MEDIA", options->file, "The media file")->required()->type_name("");
    Delivery &delivery = options->delivery;
    command->add_option("-o,--output", delivery.output, "The file to write; - is standard output")
        ->required()
        ->type_name("OUT");
    command->add_flag("--verify", delivery.verify,
                      "Decide about the output, too: it is to be sent as it is");
    command->add_flag("--force", delivery.replace, "Replace an output that exists");
    command->add_flag("--copy", delivery.copy, "Copy a file that needs no transcoding");
    command->add_flag("--accept-damaged", delivery.acceptDamaged,
                      "Take what a source gives that ends too early");
    addFfmpegOption(*command, delivery.ffmpeg);
    addDialectOption(*command, delivery.dialect);
    addMatchingOptions(*command, *options);
    command->add_flag("--always", options->DecisionOptions::force,
                      "Transcode whatever the rules say");
    command->footer(kTranscodeExamples);
    command->callback([options, &status] { status = runTranscode(*options); });
}

} // namespace vornak::tool

// vornak length: how large a PCM output will be, and whether it is.
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/commands/transcoding_options.h"
#include "tools/decide/decide_files.h"
#include "tools/terminal/exit_status.h"
#include "tools/transcode/pcm_length.h"

#include <CLI/CLI.hpp>

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
    std::string ffmpeg = "ffmpeg";
    bool verify = false;
};

int runLength(const LengthOptions &options)
{
    const DecisionRequest request = resolve(options);
    const MediaNames &media = options.media;
    const auto file = decideOne(options.profile, request,
                                media.probed.empty() ? seeFile(media.arguments.front())
                                                     : seeOnlyLine(media.probed));
    if (!file) return kIncomplete;
    return options.verify ? verifyLength(*file, options.ffmpeg) : showLength(*file);
}

} // namespace

void addLength(CLI::App &app, int &status)
{
    auto options = std::make_shared<LengthOptions>();
    CLI::App *command = app.add_subcommand("length", kLengthHelp);
    addProfileOption(*command, options->profile);
    CLI::Option *media =
        command->add_option("MEDIA", options->media.arguments, "The music file")->type_name("");
    media->expected(1);
    CLI::Option *probed = addProbedOption(*command, options->media.probed, *media);
    command
        ->add_flag("--verify", options->verify,
                   "Transcode MEDIA and compare the size of what comes out")
        ->excludes(probed);
    addFfmpegOption(*command, options->ffmpeg);
    addMatchingOptions(*command, *options);
    command->add_flag("--force", options->force, "Transcode whatever the rules say");
    command->footer(kLengthExamples);
    command->callback([options, &status] { status = runLength(*options); });
}

} // namespace vornak::tool

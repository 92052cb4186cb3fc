// vornak profile new: a profile from what its owner knows of the player.
#include "tools/commands/profile.h"
#include "tools/commands/profile_output.h"
#include "tools/import/described_player.h"
#include "tools/import/profile_text.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <stdexcept>

namespace vornak::tool {
namespace {

constexpr const char *kProfileNewHelp =
    "Make a profile of what a player takes, with comments and ready to be refined";

constexpr const char *kProfileNewFooter = R"(Examples:
  vornak profile new --like tv > tv.xml
      what such players usually take
  vornak profile new --name "Kitchen TV" --video h264:high:4.1,1920x1080 --video mpeg2video \
          --audio aac,ac3:6 --container mp4,mpegts -o kitchen.xml
      H.264 up to High at level 4.1 and that size, MPEG-2, AAC, AC-3 up to six channels

The first of each list is what all else is transcoded to. A profile of a codec stands for those
that it includes: high for main and baseline, too.

Exit status: 0 written, 2 bad usage, or an output that can't be written.
)";

struct NewOptions {
    Description description;
    ProfileOutput output;
};

int runProfileNew(const NewOptions &options)
{
    Player player = describedPlayer(options.description);
    const DeviceRules rules = makeRules(player);
    const auto isVideo = [](const Way &way) { return way.picture.has_value(); };
    if (rules.video.empty() && std::ranges::any_of(player.ways, isVideo))
        throw std::runtime_error(
            "of these videos ffmpeg makes none, and the first rule says what is "
            "transcoded to; add one that it makes, such as h264 with aac");
    for (const Remark &remark : player.remarks) complain(remarkText(remark));
    writeProfile(profileText(player, rules, "Made by vornak profile new."), options.output);
    return kDone;
}

} // namespace

void addProfileNew(CLI::App &app, int &status)
{
    auto options = std::make_shared<NewOptions>();
    Description &description = options->description;
    CLI::App *command = app.add_subcommand("new", kProfileNewHelp);
    command->add_option("--name", description.name, "The player's name")->type_name("NAME");
    command
        ->add_option("--like", description.like,
                     fmt::format("Take what isn't said here from a kind of player: {}",
                                 fmt::join(likeNames(), ", ")))
        ->type_name("KIND");
    addRepeatable(*command, "--video", description.video,
                  "A video codec with its limits; may be repeated")
        ->type_name("CODEC[:PROFILE][:LEVEL][,WIDTHxHEIGHT][,BITRATE]");
    const auto addList = [&](const char *name, std::vector<std::string> &list, const char *help,
                             const char *type) {
        addRepeatable(*command, name, list, help)->type_name(type)->delimiter(',');
    };
    addList("--audio", description.audio, "Audio codecs of videos, and of music without --music",
            "CODEC[:PROFILE][:CHANNELS],...");
    addList("--container", description.containers, "Containers of videos", "NAME,...");
    addList("--music", description.music, "Audio codecs of music",
            "CODEC[:PROFILE][:CHANNELS],...");
    addOutputOptions(*command, options->output);
    command->footer(kProfileNewFooter);
    command->callback([options, &status] { status = runProfileNew(*options); });
}

} // namespace vornak::tool

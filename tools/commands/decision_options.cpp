#include "tools/commands/decision_options.h"

#include "include/vornak_host.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_search.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <stdexcept>

namespace vornak::tool {
namespace {

[[noreturn]] void refuse(std::string_view option, std::string_view value, std::string_view what,
                         std::string_view word, const std::vector<std::string> &known)
{
    throw std::runtime_error(fmt::format("{} {}: {} {}{}", option, printable(value), what,
                                         printable(word), nearestOrAll(word, known)));
}

/// The id of CONTAINER[/SUBTYPE].
int containerId(const std::string &name)
{
    const std::size_t slash = name.find('/');
    const std::string container = name.substr(0, slash);
    const std::string subtype = slash == std::string::npos ? "" : name.substr(slash + 1);
    int id = 0;
    if (ContainerFormatNameToID(container.c_str(), nullptr, &id) != 0)
        refuse("--prefer", name, "there is no container", container, knownContainers());
    if (ContainerFormatNameToID(container.c_str(), subtype.c_str(), &id) != 0)
        refuse("--prefer", name, "the container has no subtype", subtype, knownSubtypes(id));
    if (id <= 0)
        throw std::runtime_error(fmt::format("--prefer {}: name one container", printable(name)));
    return id;
}

int playExceptionBit(const std::string &name)
{
    int bit = 0;
    if (PlayExceptionNameToID(name.c_str(), &bit) != 0)
        refuse("--play-exception", name, "there is no play exception", name, knownPlayExceptions());
    return bit;
}

} // namespace

void addProfileOption(CLI::App &command, std::string &profile)
{
    command
        .add_option("-p,--profile", profile,
                    "The player's Device profile: its file, one of the names that vornak profile "
                    "list shows, or - for standard input")
        ->required()
        ->envname("VORNAK_PROFILE")
        ->type_name("PROFILE");
    takeProfileNames(command, profile);
}

// Not by the option itself: the environment reaches those of all commands.
void takeProfileNames(CLI::App &command, std::string &profile)
{
    command.parse_complete_callback([&profile] { profile = findProfile(profile); });
}

CLI::Option *addMediaArgument(CLI::App &command, MediaNames &media)
{
    CLI::Option *argument =
        command
            .add_option("MEDIA", media.arguments,
                        "Media files, folders with all that lies below them, or - for a list of "
                        "names on standard input, one a line")
            ->required()
            ->type_name("");
    command.add_flag("-0,--null", media.endInNull,
                     "The names on standard input end in a NUL, as those of find -print0 do");
    return argument;
}

CLI::Option *addProbedOption(CLI::App &command, std::string &probed, CLI::Option &media)
{
    media.required(false);
    return command
        .add_option("--probed", probed,
                    "Lines that vornak probe has written, or - for standard input, in place of "
                    "MEDIA: no media is opened")
        ->type_name("FILE")
        ->excludes(&media);
}

void addMediaOrProbed(CLI::App &command, MediaNames &media)
{
    CLI::Option *argument = addMediaArgument(command, media);
    addProbedOption(command, media.probed, *argument);
}

void addMatchingOptions(CLI::App &command, DecisionOptions &options)
{
    command
        .add_option("--prefer", options.prefer,
                    "Container to prefer for the output, where the rules list it")
        ->type_name("CONTAINER[/SUBTYPE]");
    command
        .add_option("--audio-track", options.audioTrack,
                    "Decide for this audio track, counted from 1; a video is then transcoded, "
                    "since the library does so for an assigned track")
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
    command.add_flag("--no-match-video", options.noMatchVideo,
                     "Take video rule 0 without matching the video");
    addRepeatable(command, "--play-exception", options.playExceptions,
                  "A play exception of the video beside those found in it; may be repeated")
        ->type_name("EXCEPTION");
}

void addDecisionOptions(CLI::App &command, DecisionOptions &options)
{
    addProfileOption(command, options.profile);
    addMediaOrProbed(command, options.media);
    addMatchingOptions(command, options);
    command.add_flag("--force", options.force, "Transcode whatever the rules say");
}

DecisionRequest requestOf(const DecisionOptions &options)
{
    DecisionRequest request{.force = options.force,
                            .audioTrack = options.audioTrack,
                            .matchVideo = !options.noMatchVideo};
    if (!options.prefer.empty()) request.preferFormatId = containerId(options.prefer);
    for (const std::string &name : options.playExceptions)
        request.extraPlayExceptions |= playExceptionBit(name);
    return request;
}

DecisionRequest resolve(const DecisionOptions &options)
{
    checkMedia(options.media, options.profile == "-");
    return requestOf(options);
}

void checkMedia(const MediaNames &media, bool readsProfile)
{
    if (media.arguments.empty() && media.probed.empty()) throw CLI::RequiredError("MEDIA");
    const char *reader = media.probed == "-"                            ? "--probed -"
                         : std::ranges::count(media.arguments, "-") > 0 ? "MEDIA -"
                                                                        : nullptr;
    if (readsProfile && reader)
        throw std::runtime_error(fmt::format("--profile - and {} both read standard input; name "
                                             "one of them as a file",
                                             reader));
}

} // namespace vornak::tool

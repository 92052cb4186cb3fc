// vornak subtitles: the subtitle files that the library finds beside a video.
#include "tools/appliance/subtitle_files.h"
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/files/media_list.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <iostream>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kSubtitlesHelp =
    "Lists the subtitle files that belong to a video: those in its folder whose names begin with "
    "the video's name less its extension";

constexpr const char *kSubtitlesExamples = R"(Examples:
  vornak subtitles film.mkv
      the subtitle files of the film, each with its kind and its language
  vornak subtitles --json /media/films > subtitles.json
      those of all that lies below a folder, as a JSON document

Exit status: 0 all folders were searched, 1 some were not, 2 bad usage.)";

struct Options {
    MediaNames media;
    bool json = false;
};

struct Totals {
    std::size_t files = 0, subtitles = 0, failed = 0;
};

std::string textOf(const std::string &video, const SubtitleSearch &found)
{
    const std::size_t count = found.files.size();
    std::string text = fmt::format("{}: {} subtitle file{}{}\n", printable(video),
                                   count == 0 ? "no" : std::to_string(count), count == 1 ? "" : "s",
                                   found.full ? ", all that a list holds" : "");
    for (const SubtitleFile &file : found.files)
        text += fmt::format("  {}, {}: {}\n", file.kind,
                            file.language.empty() ? "no language" : printable(file.language),
                            printable(file.name));
    if (found.plainSrt) text += fmt::format("  plain SRT: {}\n", printable(*found.plainSrt));
    return text;
}

Json jsonOf(const SubtitleFile &file)
{
    return {{"file", printable(file.name)},
            {"fileHex", hexBytes(file.name)},
            {"kind", file.kind},
            {"language", textOrNull(file.language)}};
}

std::string jsonOf(const std::string &video, const SubtitleSearch &found)
{
    Json json = pathFields(video);
    json["error"] = nullptr;
    if (!found.error.empty()) {
        json["error"] = {{"code", found.errorCode}, {"message", found.error}};
        return json.dump();
    }
    json["subtitles"] = Json::array();
    for (const SubtitleFile &file : found.files) json["subtitles"].push_back(jsonOf(file));
    json["full"] = found.full;
    json["plainSrt"] = found.plainSrt ? Json(printable(*found.plainSrt)) : Json();
    return json.dump();
}

SubtitleSearch search(const MediaItem &item)
{
    if (item.error.empty()) return searchSubtitles(item.path);
    SubtitleSearch failed;
    failed.errorCode = "unreadable";
    failed.error = item.error;
    return failed;
}

void show(const MediaItem &item, const Options &options, Totals &totals)
{
    const SubtitleSearch found = search(item);
    const bool failed = !found.error.empty();
    // first, so that on a terminal the complaint has a line of its own
    if (options.json && totals.files > 0) writeOut(",\n");
    if (failed) complainOf(item.path, found.error);
    if (options.json)
        writeOut(jsonOf(item.path, found));
    else if (!failed)
        writeOut(textOf(item.path, found));
    ++totals.files;
    totals.subtitles += found.files.size();
    totals.failed += failed;
}

int runSubtitles(const Options &options)
{
    if (options.json) writeOut(listHead("vornak-subtitles"));
    MediaList media(options.media, std::cin);
    Totals totals;
    while (const std::optional<MediaItem> item = media.next()) show(*item, options, totals);
    if (options.json) {
        const Json summary{{"files", totals.files},
                           {"subtitles", totals.subtitles},
                           {"failed", totals.failed},
                           {"skipped", media.skipped()}};
        writeOut("\n],\n\"summary\":" + summary.dump() + "}\n");
    }
    return totals.failed > 0 ? kIncomplete : kDone;
}

} // namespace

void addSubtitles(CLI::App &app, int &status)
{
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand("subtitles", kSubtitlesHelp);
    addMediaArgument(*command, options->media);
    command->add_flag("--json", options->json, "Print a JSON document");
    command->footer(kSubtitlesExamples);
    command->callback([options, &status] { status = runSubtitles(*options); });
}

} // namespace vornak::tool

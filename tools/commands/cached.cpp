// vornak cached: copies of media files that were transcoded ahead of time.
#include "include/vornak.h"
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/files/media_list.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include "base/heap.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <iostream>
#include <memory>
#include <utility>

namespace vornak::tool {
namespace {

struct CachedOptions {
    std::pair<std::string, std::string> tags;
    MediaNames media;
    bool isMusic = false;
    bool asJson = false;
};

std::optional<std::string> findCopy(const CachedOptions &options, const std::string &path)
{
    const std::string source = path.find('/') == std::string::npos ? "./" + path : path;
    const char *const tag1 = options.tags.first.c_str();
    const char *const tag2 = options.tags.second.c_str();
    const HeapText copy(options.isMusic
                            ? IsMusicTranscodeFileReady(0, 0, 0, 0, tag1, tag2, source.c_str())
                            : IsVideoTranscodeFileReady(0, 0, 0, 0, 0, tag1, tag2, source.c_str()));
    return copy ? std::optional<std::string>(copy.get()) : std::nullopt;
}

Json toJson(const std::string &path, const std::optional<std::string> &copy)
{
    Json json = pathFields(path);
    json["copy"] = nullptr;
    if (copy) json.update({{"copy", printable(*copy)}, {"copyHex", hexBytes(*copy)}});
    return json;
}

int runCached(const CachedOptions &options)
{
    int status = kDone;
    auto files = Json::array();
    MediaList list(options.media, std::cin);
    while (const std::optional<MediaItem> item = list.next()) {
        if (!item->error.empty()) {
            status = complainOf(item->path, item->error);
            files.push_back(pathFields(item->path));
            files.back()["error"] = item->error;
            continue;
        }
        const std::optional<std::string> copy = findCopy(options, item->path);
        if (options.asJson)
            files.push_back(toJson(item->path, copy));
        else
            writeOut(fmt::format("{}: {}\n", printable(item->path),
                                 copy ? printable(*copy) : "no cached copy"));
    }
    if (!options.asJson) return status;
    Json json = documentHead("vornak-cached");
    json["tags"] = {printable(options.tags.first), printable(options.tags.second)};
    json["files"] = std::move(files);
    writeOut(json.dump(2) + '\n');
    return status;
}

} // namespace

void addCached(CLI::App &app, int &status)
{
    auto options = std::make_shared<CachedOptions>();
    CLI::App *command = app.add_subcommand(
        "cached", "Find the copies of media files that were transcoded ahead of time");
    command
        ->add_option("--tags", options->tags, "The two tags by which the server names the variant")
        ->required()
        ->type_name("FIRST SECOND");
    addMediaArgument(*command, options->media);
    command->add_flag("--music", options->isMusic,
                      "Ask as for music files; copies of both kinds lie in the same place");
    command->add_flag("--json", options->asJson, "Print a JSON document");
    command->footer("Examples:\n"
                    "  vornak cached --tags 720p mp4 film.mkv\n"
                    "  vornak cached --tags 720p mp4 --json /share/Multimedia\n\n"
                    "Exit status: 0 all files were looked at, 1 some could not be, 2 bad "
                    "usage.\n");
    command->callback([options, &status] { status = runCached(*options); });
}

} // namespace vornak::tool

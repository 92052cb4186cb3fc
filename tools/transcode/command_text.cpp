#include "tools/transcode/command_text.h"

#include "tools/terminal/json_document.h"
#include "tools/terminal/printable.h"
#include "tools/terminal/shell_text.h"
#include "tools/transcode/ffmpeg_line.h"

#include <algorithm>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

std::string orNone(std::string_view text)
{
    return text.empty() ? "none" : printable(text);
}

std::string orNone(const char *text)
{
    return text ? printable(text) : "none";
}

/// Every limit has a blank before it.
std::string_view withoutBlank(std::string_view limits)
{
    return limits.substr(std::min(limits.find_first_not_of(' '), limits.size()));
}

Json each(const std::vector<std::string> &words, std::string (*form)(std::string_view))
{
    Json list = Json::array();
    for (const std::string &word : words) list.push_back(form(word));
    return list;
}

Json jsonOf(const PcmEstimate &pcm)
{
    return {{"seconds", pcm.seconds},
            {"bytes", pcm.bytes},
            {"headerBytes", pcm.headerBytes},
            {"frames", pcm.frames}};
}

Json jsonOf(const LibraryCommand &command, const FileCommand &file)
{
    return {{"options", printable(command.options)},
            {"limits", {{"dialect", command.dialect}, {"text", printable(command.limits)}}},
            {"tag", printable(command.tag)},
            {"mime", textOrNull(command.mime)},
            {"dlnaProfile", textOrNull(command.dlnaProfile)},
            {"frame", file.decision->isVideo ? Json(command.frame) : Json()},
            {"hardwareAllowed", file.decision->isVideo ? Json(command.hardwareAllowed) : Json()},
            {"pcm", command.pcm ? jsonOf(*command.pcm) : Json()},
            {"ffmpeg", shellCommand(file.ffmpeg)},
            {"arguments", each(file.ffmpeg, printable)},
            {"argumentsHex", each(file.ffmpeg, hexBytes)}};
}

std::string commandLines(const LibraryCommand &command, const FileCommand &file)
{
    std::string text = fmt::format(
        "  options: {}\n"
        "  limits exceeded, dialect {}: {}\n"
        "  target format tag: {}\n"
        "  output: MIME type {}, DLNA profile {}\n",
        printable(command.options), command.dialect, orNone(withoutBlank(command.limits)),
        orNone(std::string_view(command.tag)), orNone(command.mime), orNone(command.dlnaProfile));
    if (file.decision->isVideo)
        text += fmt::format("  video rule: frame value {}, hardware transcoder {}\n", command.frame,
                            command.hardwareAllowed ? "allowed" : "not allowed");
    if (command.pcm)
        text += fmt::format("  size: {} bytes for {} s, {} of them the header; {} frames\n",
                            command.pcm->bytes, command.pcm->seconds, command.pcm->headerBytes,
                            command.pcm->frames);
    return text + "  ffmpeg: " + shellCommand(file.ffmpeg) + '\n';
}

} // namespace

std::string_view FileCommand::standing() const
{
    if (!problem.empty()) return problem;
    return decision->isRefused() ? "refused: NOTRANSCODE forbids to transcode it"
                                 : "needs no transcoding, it is sent as it is";
}

FileCommand commandFor(const std::string &path, const Decision &decision, int dialect)
{
    FileCommand file;
    file.path = path;
    file.decision = &decision;
    if (!needsCommand(decision)) return file;
    auto made = makeCommand(decision, dialect);
    if (auto *problem = std::get_if<std::string>(&made)) {
        file.problem = std::move(*problem);
        return file;
    }
    file.command = std::get<LibraryCommand>(std::move(made));
    file.ffmpeg = {"ffmpeg", "-nostdin"};
    for (std::string &word : ffmpegArguments(path, decision, *file.command))
        file.ffmpeg.push_back(std::move(word));
    file.ffmpeg.push_back(fileUrl(outputName(path, decision.outputFormatId)));
    return file;
}

std::string textOf(const FileCommand &file)
{
    if (file.command) return printable(file.path) + ":\n" + commandLines(*file.command, file);
    return fmt::format("{}: {}\n", printable(file.path), file.standing());
}

std::string shellTextOf(const FileCommand &file)
{
    if (file.command) return shellCommand(file.ffmpeg) + '\n';
    return fmt::format("# {}: {}\n", printable(file.path), file.standing());
}

std::string jsonOf(const FileCommand &file)
{
    Json json = pathFields(file.path);
    json["outcome"] = nameOf(file.decision->outcome);
    json["error"] = nullptr;
    if (!file.problem.empty())
        json["error"] = {{"code", "no-container-option"}, {"message", file.problem}};
    json["command"] = file.command ? jsonOf(*file.command, file) : Json();
    return json.dump();
}

} // namespace vornak::tool

#include "tools/probe/probed_line.h"

#include "tools/probe/media_json.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <stdexcept>

namespace vornak::tool {
namespace {

constexpr std::string_view kDocument = "vornak-probe"; // as in kLineStart
constexpr std::int64_t kVersion = 1;
constexpr auto kMost = std::numeric_limits<std::int64_t>::max();

// A quotation mark within a text has a backslash before it, so these are found between fields
// alone.
constexpr std::string_view kSkipped = ",\"skipped\":";
constexpr std::string_view kMedia = ",\"error\":";
constexpr std::string_view kBeside = ",\"folderChanged\":";

constexpr std::string_view s_ErrorCodes[] = {"cannot-open", "cannot-probe"};
constexpr std::string_view s_Kinds[] = {"srt", "vtt"};
constexpr std::string_view s_SearchErrors[] = {"unreadable", "path-too-long"};

/// Fields without the braces around them.
std::string inner(const Json &json)
{
    const std::string text = json.dump();
    return text.substr(1, text.size() - 2);
}

/// A field that holds one of a few words.
template <std::size_t Size>
std::string_view wordOf(const JsonFields &fields, const char *name,
                        const std::string_view (&words)[Size])
{
    const auto *const word = std::ranges::find(words, fields.text(name));
    if (word == std::end(words))
        fields.refuse(name, fmt::format("one of {}", fmt::join(words, ", ")));
    return *word;
}

/// A field with bytes in hexadecimal beside one with the same in words.
std::string bytesOf(const JsonFields &fields, const char *name, const char *hexName)
{
    std::string bytes = fields.text(name);
    if (fields.text(hexName) != hexBytes(bytes))
        fields.refuse(hexName, fmt::format("the bytes of {} in hexadecimal", name));
    return bytes;
}

void checkVersion(const JsonFields &fields)
{
    if (fields.text("document") != kDocument) throw std::runtime_error("no line of vornak probe");
    if (fields.number("version", 0, kMost) != kVersion)
        throw std::runtime_error(
            fmt::format("its version is not {}, the one that is known here", kVersion));
}

std::optional<FileState> stateOf(const JsonFields &fields)
{
    if (fields.isNull("size")) return std::nullopt;
    return FileState{fields.number("size", 0, kMost), fields.number("changed", -kMost, kMost)};
}

ProbeResult probeOf(const JsonFields &fields)
{
    if (fields.isNull("error")) return {mediaOf(fields.object("media")), {}, {}};
    const JsonFields error = fields.object("error");
    return {std::nullopt, wordOf(error, "code", s_ErrorCodes), error.text("message")};
}

std::optional<SubtitleSearch> subtitlesOf(const JsonFields &fields)
{
    if (fields.isNull("subtitles")) return std::nullopt;
    SubtitleSearch search;
    for (const JsonFields &file : fields.list("subtitles"))
        search.files.push_back({bytesOf(file, "name", "nameHex"), wordOf(file, "kind", s_Kinds),
                                file.isNull("language") ? "" : file.text("language")});
    if (fields.isNull("subtitlesError")) return search;
    const JsonFields error = fields.object("subtitlesError");
    search.errorCode = wordOf(error, "code", s_SearchErrors);
    search.error = error.text("message");
    return search;
}

} // namespace

std::string filePart(const std::string &path, const std::optional<FileState> &state)
{
    static const std::string s_Probe = jsonText(printable(probeVersion()));
    const std::string start =
        fmt::format(R"({}"version":{},"probe":{},"path":{},"pathHex":"{}",)", kLineStart, kVersion,
                    s_Probe, jsonText(printable(path)), hexBytes(path));
    if (!state) return start + R"("size":null,"changed":null)";
    return start + fmt::format(R"("size":{},"changed":{})", state->size, state->changed);
}

std::string mediaPart(const ProbeResult &probe)
{
    if (probe.media) return ',' + inner({{"error", nullptr}, {"media", jsonOf(*probe.media)}});
    const Json error = {{"code", probe.code}, {"message", printable(probe.error)}};
    return ',' + inner({{"error", error}, {"media", nullptr}});
}

std::string besideStart(std::optional<std::int64_t> folderChanged)
{
    return fmt::format("{}{}", kBeside, folderChanged ? std::to_string(*folderChanged) : "null");
}

std::string besidePart(const std::optional<SubtitleSearch> &subtitles,
                       std::optional<std::int64_t> folderChanged)
{
    if (!subtitles)
        return besideStart(std::nullopt) + R"(,"subtitles":null,"subtitlesError":null})";
    return fmt::format(R"({},"subtitles":{},"subtitlesError":{}}})", besideStart(folderChanged),
                       jsonOf(*subtitles).dump(), errorOf(*subtitles).dump());
}

std::string joinLine(const LineParts &parts, std::size_t skipped)
{
    return fmt::format("{}{}{}{}{}\n", parts.file, kSkipped, skipped, parts.media, parts.beside);
}

std::optional<LineParts> splitLine(std::string_view line)
{
    static const std::string s_Start = fmt::format("{}\"version\":{},", kLineStart, kVersion);
    if (!line.starts_with(s_Start) || !line.ends_with('}')) return std::nullopt;
    const std::size_t skipped = line.find(kSkipped), media = line.find(kMedia, skipped),
                      beside = line.rfind(kBeside);
    if (media == std::string_view::npos || beside == std::string_view::npos || beside < media)
        return std::nullopt;
    return LineParts{line.substr(0, skipped), line.substr(media, beside - media),
                     line.substr(beside)};
}

bool isOpened(std::string_view mediaPart)
{
    return mediaPart.find("\"cannot-open\"") == std::string_view::npos;
}

ProbedFile readLine(std::string_view line)
{
    const Json json = parseForeign(line);
    const JsonFields fields(json);
    checkVersion(fields);
    return {bytesOf(fields, "path", "pathHex"), stateOf(fields),
            static_cast<std::size_t>(fields.number("skipped", 0, kMost)), probeOf(fields),
            subtitlesOf(fields)};
}

} // namespace vornak::tool

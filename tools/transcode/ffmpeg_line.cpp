#include "tools/transcode/ffmpeg_line.h"

#include "base/media_ids.h"
#include "include/vornak.h"
#include "tools/decide/decision.h"
#include "tools/profile/media_names.h"
#include "tools/transcode/library_command.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace vornak::tool {
namespace {

using Words = std::vector<std::string>;

/// An option of the appliance's transcoder, and what a stock ffmpeg has for it. "*" is any
/// value, "#" some digits of it.
struct Translation {
    std::string_view option, value;
    std::string_view stockOption, stockValue; ///< empty: left out
};

// docs/transcoding.md explains the rows.
constexpr Translation s_Translations[] = {
    {"-num_frames", "*", "", ""},
    {"-vprofile", "*", "-profile:v", "*"},
    {"-aprofile", "*", "-profile:a", "*"},
    {"-vp", "*", "-profile:v", "*"},
    {"-vlevel", "*", "-level:v", "*"},
    {"-vb", "*", "-b:v", "*"},
    {"-ab", "*", "-b:a", "*"},
    {"-s", "#p", "-vf", "scale=-2:#"},
    {"-filter:v", "*", "-vf", "*"},
    {"-f", "mkvtimestamp_v2", "-f", "matroska"},
    {"-f", "mpeg2video", "-f", "vob"},
};

/// What "*" or "#" stands for in a value that fits the pattern, or nothing.
std::optional<std::string_view> matchValue(std::string_view value, std::string_view pattern)
{
    if (pattern == "*") return value;
    const std::size_t mark = pattern.find('#');
    if (mark == std::string_view::npos) {
        if (value == pattern) return std::string_view();
        return std::nullopt;
    }
    const std::string_view after = pattern.substr(mark + 1);
    if (value.size() <= after.size() || !value.ends_with(after)) return std::nullopt;
    const std::string_view digits = value.substr(0, value.size() - after.size());
    if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    return digits;
}

std::string fillIn(std::string_view pattern, std::string_view text)
{
    std::string filled(pattern);
    if (const std::size_t mark = filled.find_first_of("*#"); mark != std::string::npos)
        filled.replace(mark, 1, text);
    return filled;
}

Words splitAtBlanks(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    Words words;
    for (std::size_t start = text.find_first_not_of(kBlanks); start != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, start), text.size());
        words.emplace_back(text.substr(start, end - start));
        start = text.find_first_not_of(kBlanks, end);
    }
    return words;
}

/// Appends an option and its value as a stock ffmpeg has them; false: there is no row for them.
bool appendTranslated(Words &to, std::string_view option, std::string_view value)
{
    for (const Translation &row : s_Translations) {
        if (row.option != option) continue;
        const auto marked = matchValue(value, row.value);
        if (!marked) continue;
        if (row.stockOption.empty()) return true;
        to.emplace_back(row.stockOption);
        to.push_back(fillIn(row.stockValue, *marked));
        return true;
    }
    return false;
}

Words translate(const Words &words)
{
    Words stock;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool hasNext = i + 1 < words.size();
        if (hasNext && appendTranslated(stock, words[i], words[i + 1]))
            ++i;
        else
            stock.push_back(words[i]);
    }
    return stock;
}

/// The value of the last option of that name, which is the one that counts; or null.
std::string *findValue(Words &words, std::string_view option)
{
    for (std::size_t i = words.size(); i-- > 1;)
        if (words[i - 1] == option) return &words[i];
    return nullptr;
}

/// Adds a limit to `added`, or to the filters among the options, unless those settle it.
void addLimit(const std::string &option, const std::string &value, Words &added, Words &options)
{
    std::string *settled = findValue(options, option);
    if (option == "-vf" && findValue(options, "-s")) return;
    if (option == "-vf" && settled && settled->find("scale") == std::string::npos) {
        *settled += "," + value;
        return;
    }
    if (settled) return;
    if (std::string *earlier = findValue(added, option))
        *earlier = value;
    else
        added.insert(added.end(), {option, value});
}

/// The option for a container that the profile gives none for.
std::string_view defaultContainerOption(int formatId)
{
    const int container = containerPart(formatId);
    for (const DEFAULT_FORMAT_PARAM_ST &row : s_DefaultFormatParams)
        if (row.option && row.formatId == container) return row.option;
    return {};
}

} // namespace

std::vector<std::string> ffmpegArguments(const std::string &media, const Decision &decision,
                                         const LibraryCommand &command)
{
    // as it was decided about: no list that names other files, nor a URL
    std::vector<std::string> words = {"-protocol_whitelist",  "file", "-f",
                                      decision.media.demuxer, "-i",   fileUrl(media)};
    if (decision.isVideo) words.insert(words.end(), {"-map", "0:V:0"});
    if (decision.track >= 0)
        words.insert(words.end(), {"-map", fmt::format("0:a:{}", decision.track)});
    const std::vector<std::string> options =
        stockArguments(command.limits, command.options, decision.outputFormatId);
    words.insert(words.end(), options.begin(), options.end());
    return words;
}

std::vector<std::string> stockArguments(std::string_view limits, std::string_view options,
                                        int formatId)
{
    Words own = translate(splitAtBlanks(options));
    if (!findValue(own, "-f")) {
        const Words container = translate(splitAtBlanks(defaultContainerOption(formatId)));
        own.insert(own.begin(), container.begin(), container.end());
    }
    const Words limiting = translate(splitAtBlanks(limits));
    Words arguments;
    for (std::size_t i = 0; i + 1 < limiting.size(); i += 2)
        addLimit(limiting[i], limiting[i + 1], arguments, own);
    arguments.insert(arguments.end(), own.begin(), own.end());
    return arguments;
}

std::string fileUrl(const std::string &path)
{
    return "file:" + path;
}

std::string outputName(const std::string &media, int formatId)
{
    return fmt::format("{}.transcoded.{}", media, extensionOf(formatId));
}

} // namespace vornak::tool

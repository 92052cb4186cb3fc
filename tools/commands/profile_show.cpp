// vornak profile show: the tables that the library makes of a profile.
#include "base/rule_tables.h"
#include "tools/commands/profile.h"
#include "tools/commands/profile_show_json.h"
#include "tools/decide/reason_text.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kProfileShowHelp = "Show the rules of a profile as the library loads them";

constexpr const char *kProfileShowFooter = R"(Examples:
  vornak profile show tv.xml
      every rule that was accepted, with its position, its line and its limits
  vornak profile show --json tv.xml | jq '.video[0].audio[].codec'

Exit status: 0 shown, 2 bad usage or a profile that can't be loaded.
)";

using Parts = std::vector<std::string>;

void addNumber(Parts &parts, int value, fmt::format_string<int &> form)
{
    if (value > 0) parts.push_back(fmt::format(form, value));
}

void addChannels(Parts &parts, const char *bound, int channels)
{
    if (channels > 0) parts.push_back(fmt::format("{} {}", bound, channelsText(channels)));
}

void addProfiles(Parts &parts, int bits, int codecId)
{
    if (bits > 0)
        parts.push_back(fmt::format("profile {}", fmt::join(profileTexts(bits, codecId), "|")));
}

/// A pair of sizes; one alone limits nothing, and with a tolerance both are to be met.
void addSize(Parts &parts, const char *bound, int width, int height, int tolerance)
{
    if (width <= 0 && height <= 0) return;
    if (width <= 0 || height <= 0)
        parts.push_back(fmt::format("half a pair of sizes ({}x{}, no limit)", width, height));
    else if (tolerance > 0)
        parts.push_back(fmt::format("within {} pixels of {}x{}", tolerance, width, height));
    else
        parts.push_back(fmt::format("{} {}x{}", bound, width, height));
}

Parts limitsOf(const AudioRule &rule)
{
    Parts parts;
    addProfiles(parts, rule.aProfileId, rule.aCodecId);
    addNumber(parts, rule.aLevel, "level at most {}");
    addChannels(parts, "at most", rule.maxChannels);
    addChannels(parts, "at least", rule.minChannels);
    addNumber(parts, rule.maxSampleRate, "at most {} Hz");
    addNumber(parts, rule.minSampleRate, "at least {} Hz");
    addNumber(parts, rule.maxBitrate, "at most {} bit/s");
    addNumber(parts, rule.minBitrate, "at least {} bit/s");
    return parts;
}

Parts limitsOf(const VideoRule &rule)
{
    Parts parts;
    addProfiles(parts, rule.vProfileId, rule.vCodecId);
    addNumber(parts, rule.vLevel, "level at most {}");
    addSize(parts, "at most", rule.maxWidth, rule.maxHeight, rule.tolerance);
    addSize(parts, "at least", rule.minWidth, rule.minHeight, rule.tolerance);
    addNumber(parts, rule.maxBitrate, "at most {} bit/s");
    addNumber(parts, rule.minBitrate, "at least {} bit/s");
    if (rule.playException != 0)
        parts.push_back(
            fmt::format("but not {}", fmt::join(playExceptionTexts(rule.playException), "|")));
    return parts;
}

/// @param all  elements that the table was made of, unless no record is valid
std::string countText(std::size_t valid, int all, const char *element)
{
    if (valid == 0) return fmt::format("no valid {}", element);
    const std::size_t left = static_cast<std::size_t>(all) - valid;
    if (left == 0) return std::to_string(valid);
    return fmt::format("{}, and {} {} left out", valid, left, element);
}

class Tree {
public:
    explicit Tree(const ProfileSession &session) : session_(session) {}

    std::string write()
    {
        const TRANSCODE_DEVICE_PROFILE_ST &profile = session_.profile();
        add(0,
            fmt::format("{}{}{}", colours().name, printable(profile.deviceName), colours().reset));
        addTable(0, "MUSIC", "ACODEC", profile.pAudioTable);
        addTable(0, "VIDEO", "VCODEC", profile.pVideoTable);
        return std::move(text_);
    }

private:
    void add(int depth, std::string_view line)
    {
        text_ += fmt::format("{:{}}{}\n", "", 2 * depth, line);
    }

    void addField(int depth, const char *name, const char *value)
    {
        if (value) add(depth, fmt::format("{}: {}", name, printable(value)));
    }

    void addField(int depth, const char *name, int value)
    {
        if (value != 0) add(depth, fmt::format("{}: {}", name, value));
    }

    void addLimits(int depth, const Parts &limits)
    {
        add(depth, limits.empty() ? "no limits" : fmt::format("{}", fmt::join(limits, ", ")));
    }

    template <class Record>
    void addTable(int depth, const char *title, const char *element, const Record *table)
    {
        if (!table) return add(depth, fmt::format("{}: none", title));
        std::size_t valid = 0;
        while (idOf(table[valid]) != kEndOfTable) ++valid;
        add(depth, fmt::format("{}: {}", title, countText(valid, table->count, element)));
        for (std::size_t i = 0; i < valid; ++i) addRule(depth + 1, i, table[i]);
    }

    template <class Record>
    void addHead(int depth, std::size_t position, const std::string &name, const Record &record)
    {
        add(depth, fmt::format("{} {}{}{} (line {})", position, colours().good, name,
                               colours().reset, session_.lineOf(&record)));
    }

    void addRule(int depth, std::size_t position, const VideoRule &rule)
    {
        addHead(depth, position, codecText(rule.vCodecId), rule);
        addLimits(depth + 1, limitsOf(rule));
        addField(depth + 1, "OPTION", rule.option);
        addField(depth + 1, "VATRANSCODE", rule.vaTranscode);
        addField(depth + 1, "FRAME", rule.frame);
        addField(depth + 1, "NOTRANSCODE", rule.noTranscode);
        addTable(depth + 1, "audio", "ACODEC", rule.pAudioTable);
    }

    void addRule(int depth, std::size_t position, const AudioRule &rule)
    {
        addHead(depth, position, codecText(rule.aCodecId), rule);
        addLimits(depth + 1, limitsOf(rule));
        addField(depth + 1, "OPTION", rule.option);
        addField(depth + 1, "NOTRANSCODE", rule.noTranscode);
        addTable(depth + 1, "containers", "FORMAT", rule.pFormatTable);
    }

    void addRule(int depth, std::size_t position, const ContainerEntry &entry)
    {
        addHead(depth, position, containerText(entry.formatId), entry);
        addField(depth + 1, "MIME", entry.mime);
        addField(depth + 1, "PN", entry.pn);
        addField(depth + 1, "OPTION", entry.option);
        addField(depth + 1, "NONSEEKABLE", entry.nonSeekable);
        addField(depth + 1, "NOTRANSCODE", entry.noTranscode);
    }

    const ProfileSession &session_;
    std::string text_;
};

int runProfileShow(const ProfileOptions &options)
{
    const ProfileSession session(options.path);
    complainOfWarnings(options.path, session);
    writeOut(options.json ? jsonOf(options.path, session) : Tree(session).write());
    return kDone;
}

} // namespace

void addProfileShow(CLI::App &app, int &status)
{
    auto options = std::make_shared<ProfileOptions>();
    CLI::App *command = app.add_subcommand("show", kProfileShowHelp);
    addProfileOptions(*command, *options);
    command->footer(kProfileShowFooter);
    command->callback([options, &status] { status = runProfileShow(*options); });
}

} // namespace vornak::tool

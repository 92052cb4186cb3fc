#include "tools/import/profile_text.h"

#include "tools/profile/dlna_names.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"
#include "tools/terminal/wrapped_text.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>
#include <string_view>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::size_t kWidth = 100;

std::string escaped(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '&')
            escaped += "&amp;";
        else if (c == '<')
            escaped += "&lt;";
        else if (c == '"')
            escaped += "&quot;";
        else
            escaped += c;
    }
    return escaped;
}

/// Text that doesn't end the comment in which it stands.
std::string inComment(std::string text)
{
    for (std::size_t at = text.find("--"); at != std::string::npos; at = text.find("--", at))
        text.insert(at + 1, 1, ' ');
    if (text.ends_with('-')) text += ' ';
    return text;
}

/// The attributes of an element, each after a blank.
class Attributes {
public:
    void add(const char *name, std::string_view value)
    {
        if (!value.empty()) text_ += fmt::format(" {}=\"{}\"", name, escaped(printable(value)));
    }

    /// A number that is multiplied by the loader, as short as it can be.
    void add(const char *name, int value)
    {
        if (value == 0) return;
        add(name, value % 1'000'000 == 0 ? fmt::format("{}M", value / 1'000'000)
                  : value % 1000 == 0    ? fmt::format("{}K", value / 1000)
                                         : std::to_string(value));
    }

    void addPlain(const char *name, int value)
    {
        if (value != 0) add(name, std::to_string(value));
    }

    void addBits(const char *name, const std::vector<std::string> &names)
    {
        add(name, fmt::format("{}", fmt::join(names, " | ")));
    }

    const std::string &text() const { return text_; }

private:
    std::string text_;
};

void addSizes(Attributes &attributes, const Limits &limits)
{
    // a size alone limits nothing; there is no picture beyond this
    constexpr int kBeyond = 65535;
    const bool isLimited = limits.width.most != 0 || limits.height.most != 0;
    const auto orBeyond = [&](int size) { return isLimited && size == 0 ? kBeyond : size; };
    attributes.addPlain("MAXWIDTH", orBeyond(limits.width.most));
    attributes.addPlain("MAXHEIGHT", orBeyond(limits.height.most));
    attributes.addPlain("MINWIDTH", limits.width.least);
    attributes.addPlain("MINHEIGHT", limits.height.least);
}

/// What a rule says, of a picture or of sound: limits that it doesn't have are left out.
std::string attributesOf(const Rule &rule)
{
    const Limits &limits = rule.limits;
    Attributes attributes;
    attributes.add("NAME", codecText(limits.codec));
    attributes.addBits("PROFILE", profileTexts(limits.profiles, limits.codec));
    attributes.addPlain("LEVEL", limits.level);
    addSizes(attributes, limits);
    attributes.addPlain("MAXCHANNELS", limits.channels.most);
    attributes.addPlain("MINCHANNELS", limits.channels.least);
    attributes.addPlain("MAXFREQUENCY", limits.sampleRate.most);
    attributes.addPlain("MINFREQUENCY", limits.sampleRate.least);
    attributes.add("MAXBITRATE", limits.bitrate.most);
    attributes.add("MINBITRATE", limits.bitrate.least);
    attributes.addBits("PLAY_EXCEPTION", playExceptionTexts(rule.exceptions));
    attributes.addPlain("NOTRANSCODE", rule.noTranscode ? 1 : 0);
    return attributes.text();
}

std::string attributesOf(const ContainerRule &rule)
{
    const std::string name = containerText(rule.container.format);
    const std::size_t slash = name.find('/');
    Attributes attributes;
    attributes.add("NAME", name.substr(0, slash));
    if (slash != std::string::npos) attributes.add("SUBTYPE", name.substr(slash + 1));
    attributes.add("MIME", rule.container.mime);
    attributes.add("PN", rule.container.pn);
    attributes.add("OPTION", rule.option);
    attributes.addPlain("NOTRANSCODE", rule.noTranscode ? 1 : 0);
    return attributes.text();
}

class Writer {
public:
    explicit Writer(const Player &player) : player_(player) {}

    std::string write(const DeviceRules &rules, const std::string &made)
    {
        text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!--\n";
        addHead(made);
        text_ += "-->\n";
        addSilencers(rules);
        text_ += fmt::format("<DEVICE NAME=\"{}\">\n", escaped(printable(player_.name)));
        addSection("MUSIC", rules.music);
        addSection("VIDEO", rules.video);
        return std::move(text_) + "</DEVICE>\n";
    }

private:
    void addHead(const std::string &made)
    {
        text_ += "  " + wrappedText(inComment(made), kWidth, 2, 2) + "\n\n";
        text_ += "  Rules are tried from top to bottom; the first that a file fits is taken. What "
                 "fits none is\n  transcoded to what the first rule of the list says.\n";
        if (player_.remarks.empty()) return;
        text_ += "\n  Not said, or said otherwise:\n";
        for (const Remark &remark : player_.remarks)
            text_ += "  - " + wrappedText(inComment(remarkText(remark)), kWidth, 4, 4) + '\n';
    }

    /// Keeps the check from doubting names that the foreign profile states.
    void addSilencers(const DeviceRules &rules)
    {
        std::set<std::string_view> doubts;
        const auto look = [&](const Rule &rule, bool isMusic) {
            for (const ContainerRule &entry : rule.containers) {
                const std::string &pn = entry.container.pn, &mime = entry.container.mime;
                if (!pn.empty() && !findDlnaName(pn)) doubts.insert("unknown-pn");
                if (!mime.empty() && !isKnownMimeType(mime)) doubts.insert("unknown-mime");
                if (!mimeContradiction(mime, entry.container.format, isMusic).empty())
                    doubts.insert("foreign-mime");
            }
        };
        for (const Rule &rule : rules.music) look(rule, true);
        for (const Rule &rule : rules.video)
            for (const Rule &sound : rule.sounds) look(sound, false);
        for (const std::string_view doubt : doubts)
            addLine(0, fmt::format("<!-- vornak: ignore {} (as the player states it) -->", doubt));
    }

    void addLine(std::size_t depth, std::string_view line)
    {
        text_ += fmt::format("{:{}}{}\n", "", 2 * depth, line);
    }

    void addSection(const char *name, const std::vector<Rule> &rules)
    {
        if (rules.empty()) return;
        addLine(1, fmt::format("<{}>", name));
        addRules(2, rules);
        addLine(1, fmt::format("</{}>", name));
    }

    void addRules(std::size_t depth, const std::vector<Rule> &rules)
    {
        for (const Rule &rule : rules) {
            addComment(depth, rule, &rule == &rules.front());
            addRule(depth, rule);
        }
    }

    /// What a rule is for and where it comes from.
    void addComment(std::size_t depth, const Rule &rule, bool isFirst)
    {
        std::string text = rule.noTranscode
                               ? "Dolby Vision without a base layer is refused: no film fits the "
                                 "sound below, and none is transcoded to it."
                           : isFirst ? "Transcoded to."
                                     : "";
        for (const int origin : rule.origins)
            text += (origin == *rule.origins.begin() ? text.empty() ? "From " : " From " : ", ") +
                    player_.origins[static_cast<std::size_t>(origin)];
        const std::size_t hang = 2 * depth + 5;
        addLine(depth,
                fmt::format("<!-- {} -->", wrappedText(inComment(text), kWidth, hang, hang)));
    }

    void addRule(std::size_t depth, const Rule &rule)
    {
        const char *element = rule.sounds.empty() ? "ACODEC" : "VCODEC";
        const bool hasOption = !rule.option.empty();
        addLine(depth, fmt::format("<{}{}{}", element, attributesOf(rule), hasOption ? "" : ">"));
        if (hasOption) addLine(depth + 4, fmt::format("OPTION=\"{}\">", escaped(rule.option)));
        addRules(depth + 1, rule.sounds);
        for (const ContainerRule &entry : rule.containers)
            addLine(depth + 1, fmt::format("<FORMAT{}/>", attributesOf(entry)));
        addLine(depth, fmt::format("</{}>", element));
    }

    const Player &player_;
    std::string text_;
};

} // namespace

std::string profileText(const Player &player, const DeviceRules &rules, const std::string &made)
{
    return Writer(player).write(rules, made);
}

std::string remarkText(const Remark &remark)
{
    constexpr const char *s_Kinds[] = {"left out", "looser", "stricter"};
    const std::string place =
        remark.line > 0 ? fmt::format("{}:{}: ", remark.file, remark.line) : std::string();
    return fmt::format("{}{}: {}", place, s_Kinds[remark.kind], remark.text);
}

} // namespace vornak::tool

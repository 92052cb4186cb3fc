#include "tools/import/dlna_profiles.h"

#include "base/ascii_case.h"
#include "base/media_ids.h"
#include "tools/import/dlna_document.h"
#include "tools/import/dlna_fields.h"
#include "tools/import/said_limits.h"
#include "tools/profile/id_names.h"
#include "tools/profile/regular_file.h"
#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <string_view>

namespace vornak::tool {
namespace {

/// PROTOCOL:NETWORK:MIME:DETAILS, where the details are NAME=VALUE with semicolons between them.
SinkEntry readEntry(const std::string &text)
{
    constexpr std::string_view kProfile = "DLNA.ORG_PN=";
    SinkEntry entry{text, {}, {}};
    const std::vector<std::string> parts = splitList(text, ':');
    if (parts.size() < 3 || lowerCase(parts[0]) != "http-get") return entry;
    entry.mime = parts[2];
    if (parts.size() < 4) return entry;
    for (const std::string &detail : splitList(parts[3], ';'))
        if (detail.starts_with(kProfile)) entry.profile = detail.substr(kProfile.size());
    return entry;
}

constexpr std::size_t kMostWays = 100'000;
constexpr std::size_t kMostWishes = 1000;

class Reader {
public:
    Reader(const std::string &path, bool relaxed) : path_(path), document_(path, relaxed, player_)
    {}

    Player read(const std::vector<SinkEntry> &wanted)
    {
        for (const SinkEntry &entry : wanted) add(entry);
        if (player_.ways.empty())
            throw ProfileError(
                path_, 0,
                fmt::format("none of the names stands for a DLNA profile whose files "
                            "rules can describe{}",
                            player_.remarks.empty() ? "" : ": " + player_.remarks.begin()->text));
        player_.name = "DLNA player";
        return std::move(player_);
    }

private:
    void leaveOut(const SinkEntry &entry, const std::string &why)
    {
        Note(player_.remarks, shownFileName(path_), 0, printable(entry.text)).leftOut("{}", why);
    }

    void add(const SinkEntry &entry)
    {
        if (entry.profile.empty())
            return leaveOut(entry, "it names no DLNA profile of files that are got by HTTP");
        std::vector<DlnaProfile> profiles = document_.profilesNamed(entry.profile);
        if (profiles.empty())
            return leaveOut(entry, "there is no such DLNA profile" +
                                       didYouMean(entry.profile, document_.names()));
        if (!entry.mime.empty()) {
            std::erase_if(profiles,
                          [&](const DlnaProfile &profile) { return profile.mime != entry.mime; });
            if (profiles.empty()) leaveOut(entry, "no such DLNA profile has this MIME type");
        }
        for (const DlnaProfile &profile : profiles) add(profile);
    }

    Note noteOf(const DlnaProfile &profile)
    {
        return {player_.remarks, profile.file, profile.line, printable(profile.name)};
    }

    void add(const DlnaProfile &profile)
    {
        Union pictures, sounds;
        bool isVideo = false;
        for (const DlnaRestriction &stream : profile.streams) {
            const bool isPicture = stream.type == "video";
            isVideo = isVideo || isPicture;
            if (isPicture || stream.type == "audio")
                for (const Limits &limits : limitsThatFit(stream, player_))
                    tool::add(isPicture ? pictures : sounds, limits);
            else
                noteOf(profile).leftOut("a Device profile has no rules for streams of the type {}",
                                        printable(stream.type));
        }
        if (isVideo && !profile.container)
            return noteOf(profile).stricter("no file holds pictures without a container");
        if (isVideo && sounds.empty())
            return noteOf(profile).stricter("no sound fits it, and a rule needs some");
        for (const Limits &limits : pictures) noteOddities(limits, noteOf(profile));
        std::vector<std::optional<Limits>> parts(pictures.begin(), pictures.end());
        if (!isVideo) parts.emplace_back();
        if (!profile.container) return addBare(profile, sounds);
        for (const Container &container : containersThatFit(*profile.container, !isVideo, player_))
            for (const std::optional<Limits> &picture : parts)
                for (const Limits &sound : sounds) addWay(profile, picture, sound, container);
    }

    /// Adds music that is a file of its own.
    void addBare(const DlnaProfile &profile, const Union &sounds)
    {
        for (const Limits &sound : sounds)
            if (const int format = bareContainer(sound.codec); format != 0)
                addWay(profile, std::nullopt, sound, {format, {}, {}});
            else
                noteOf(profile).stricter("no file holds {} alone, without a container",
                                         codecText(sound.codec));
    }

    void addWay(const DlnaProfile &profile, const std::optional<Limits> &picture,
                const Limits &sound, Container container)
    {
        if (player_.ways.size() == kMostWays)
            throw ProfileError(path_, 0,
                               "the profiles combine to more kinds of files than a Device "
                               "profile can hold");
        container.mime = profile.mime;
        container.pn = profile.name;
        if (player_.wishes.size() < kMostWishes)
            player_.wishes.push_back(
                {picture.has_value(), picture ? picture->codec : 0, sound.codec, container.format});
        const std::vector<int> origin = {
            originOf(player_, fmt::format("{} ({}:{})", printable(profile.name), profile.file,
                                          profile.line))};
        player_.ways.push_back({picture, sound, {container}, origin, origin});
    }

    const std::string &path_;
    Player player_;
    DlnaDocument document_;
};

} // namespace

std::vector<SinkEntry> readSinkProtocolInfo(const std::string &list)
{
    std::vector<SinkEntry> entries;
    std::string entry;
    const auto finish = [&] {
        for (const std::string &text : splitList(entry, '\n')) entries.push_back(readEntry(text));
        entry.clear();
    };
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i] == '\\' && i + 1 < list.size())
            entry += list[++i];
        else if (list[i] == ',')
            finish();
        else
            entry += list[i];
    }
    finish();
    return entries;
}

Player readDlnaProfiles(const std::string &path, const std::vector<SinkEntry> &wanted, bool relaxed)
{
    return Reader(path, relaxed).read(wanted);
}

} // namespace vornak::tool

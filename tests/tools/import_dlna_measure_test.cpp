// What a server plays that goes by gupnp-dlna's descriptions, by a plain statement of how they are
// read, beside what the imported profile keeps.
#include "tests/tools/imported_media.h"

#include <algorithm>
#include <deque>
#include <map>
#include <pugixml.hpp>

namespace vornak::test {
namespace {

/// A server that goes by gupnp-dlna's descriptions, straight from theirs.
class DlnaServer {
public:
    DlnaServer(const std::string &folder, std::vector<std::string> names) : names_(std::move(names))
    {
        for (const char *const file : {"common.xml", "music.xml", "players.xml"}) {
            documents_.emplace_back();
            texts_[file] = read(folder + file);
            documents_.back().load_string(texts_[file].c_str());
            for (const auto &found : documents_.back().select_nodes("//field"))
                found.node().append_attribute("line") = lineAt(file, found.node().offset_debug());
            for (const auto &found : documents_.back().select_nodes("//restriction[@id]"))
                restrictions_[found.node().attribute("id").value()] = {found.node(), file};
            for (const auto &found : documents_.back().select_nodes("//dlna-profile"))
                profiles_.push_back({found.node(), file});
        }
    }

    /// @param ignored  fields that don't count
    bool plays(const Media &media, const std::set<std::pair<std::string, int>> &ignored) const
    {
        return std::ranges::any_of(profiles_, [&](const Place &profile) {
            return std::ranges::find(names_, profile.node.attribute("name").value()) !=
                       names_.end() &&
                   fits(profile, capsOf(media), ignored);
        });
    }

private:
    struct Place {
        pugi::xml_node node;
        std::string file;
    };
    using Caps = std::map<std::string, std::map<std::string, std::string>>; // of each kind
    using Ignored = std::set<std::pair<std::string, int>>;

    static std::string read(const std::string &path)
    {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static Caps capsOf(const Media &m)
    {
        Caps caps;
        auto &audio = caps["audio"];
        audio = {{"channels", std::to_string(m.channels)},
                 {"bitrate", std::to_string(m.audioBitrate)},
                 {"rate", std::to_string(m.rate)}};
        if (m.audio == "ac3") audio["name"] = "audio/x-ac3";
        if (m.audio == "aac") {
            audio["name"] = "audio/mpeg";
            audio["mpegversion"] = "4";
            audio["profile"] = m.audioProfile;
        }
        if (m.audio == "mp3" || m.audio == "mp2") {
            audio["name"] = "audio/mpeg";
            audio["mpegversion"] = "1";
            audio["layer"] = m.audio.substr(2);
            audio["mpegaudioversion"] = m.rate >= 32000 ? "1" : m.rate >= 16000 ? "2" : "3";
        }
        if (m.container == "mp4")
            caps["container"] = {{"name", "video/quicktime"}, {"variant", "iso"}};
        if (m.container == "m4a") caps["container"] = {{"name", "audio/x-m4a"}};
        if (m.container == "mpegts")
            caps["container"] = {
                {"name", "video/mpegts"}, {"packetsize", "188"}, {"systemstream", "true"}};
        if (m.container == "avi") caps["container"] = {{"name", "video/x-msvideo"}};
        if (!m.isVideo) return caps;
        auto &video = caps["video"];
        video = {{"width", std::to_string(m.width)},
                 {"height", std::to_string(m.height)},
                 {"bitrate", std::to_string(m.videoBitrate)},
                 {"interlaced", m.interlaced ? "true" : "false"},
                 {"framerate", std::to_string(m.frameRate)},
                 {"profile", m.videoProfile}};
        std::ranges::replace(video["profile"], ' ', '-');
        if (m.video == "h264") {
            video["name"] = "video/x-h264";
            video["level"] = std::to_string(m.level / 10) +
                             (m.level % 10 > 0 ? "." + std::to_string(m.level % 10) : "");
        }
        if (m.video == "mpeg2video") {
            video["name"] = "video/mpeg";
            video["mpegversion"] = "2";
            video["systemstream"] = "false";
            video["level"] = m.level == 4 ? "high" : m.level == 8 ? "main" : "low";
        }
        return caps;
    }

    static double number(const std::string &text)
    {
        const auto slash = text.find('/');
        return slash == std::string::npos ? std::stod(text)
                                          : std::stod(text) / std::stod(text.substr(slash + 1));
    }

    int lineAt(const std::string &file, std::ptrdiff_t offset) const
    {
        const std::string &text = texts_.at(file);
        return 1 + static_cast<int>(std::count(text.begin(), text.begin() + offset, '\n'));
    }

    static bool isUsed(pugi::xml_node node)
    {
        return std::string_view(node.attribute("used").value()) != "in-relaxed";
    }

    bool keeps(const Place &restriction, const std::map<std::string, std::string> &caps,
               const Ignored &ignored) const
    {
        for (const pugi::xml_node child : restriction.node.children()) {
            if (!isUsed(child)) continue;
            const std::string kind = child.name();
            if (kind == "parent" &&
                !keeps(restrictions_.at(child.attribute("name").value()), caps, ignored))
                return false;
            if (kind != "field" ||
                ignored.contains({restriction.file, child.attribute("line").as_int()}))
                continue;
            const auto found = caps.find(child.attribute("name").value());
            const std::string value = found == caps.end() ? "" : found->second;
            bool isAny = false;
            for (const pugi::xml_node each : child.children("value"))
                isAny = isAny || value == each.text().get();
            if (const pugi::xml_node range = child.child("range"))
                isAny = number(value) >= number(range.attribute("min").value()) &&
                        number(value) <= number(range.attribute("max").value());
            if (!isAny) return false;
        }
        return true;
    }

    /// The restrictions of a profile by their kind; an own container takes an inherited one's
    /// place.
    void gather(const Place &profile, std::map<std::string, std::vector<Place>> &all) const
    {
        const auto addOne = [&](const Place &restriction) {
            auto &list = all[restriction.node.attribute("type").value()];
            if (restriction.node.attribute("type").value() == std::string("container"))
                list.clear();
            list.push_back(restriction);
        };
        for (const Place &other : profiles_)
            if (const std::string id = other.node.attribute("id").value();
                !id.empty() && id == profile.node.attribute("base-profile").value())
                gather(other, all);
        for (const pugi::xml_node child : profile.node.children()) {
            if (!isUsed(child)) continue;
            if (std::string_view(child.name()) == "parent")
                addOne(restrictions_.at(child.attribute("name").value()));
            else
                addOne({child, profile.file});
        }
    }

    bool fits(const Place &profile, const Caps &caps, const Ignored &ignored) const
    {
        std::map<std::string, std::vector<Place>> all;
        gather(profile, all);
        for (const char *const kind : {"container", "audio", "video", "image"}) {
            const auto have = caps.find(kind);
            if (have == caps.end()) {
                if (!all[kind].empty()) return false;
                continue;
            }
            if (std::ranges::none_of(all[kind], [&](const Place &restriction) {
                    return keeps(restriction, have->second, ignored);
                }))
                return false;
        }
        return true;
    }

    std::vector<std::string> names_;
    std::map<std::string, std::string> texts_;
    std::deque<pugi::xml_document> documents_;
    std::map<std::string, Place> restrictions_;
    std::vector<Place> profiles_;
};

TEST(ImportDlnaMeasure, OfWrittenProfiles)
{
    Random random(firstSeed());
    const std::string folder = VORNAK_SOURCE_DIR "/tests/tools/import/dlna/";
    const std::string names = "FILM_TS,FILM_ISO,SMALL_ISO,OLDER_TS,SONG,SONG_ISO,SOUND";
    for (const std::string &name :
         {names, std::string("OLDER_TS,SONG_ISO"), std::string("FILM_ISO")}) {
        const std::vector<std::string> wanted = splitWords(name, ',');
        const Imported imported = import({folder + "players.xml", {}, wanted, {}, false});
        EXPECT_EQ(imported.faults, std::vector<std::string>{}) << imported.xml;
        const DlnaServer server(folder, wanted);
        Count count;
        for (int i = 0; i < 2000; ++i) {
            Media media = anyMedia(random);
            media.container = random.word(media.isVideo ? "mp4,mpegts,avi" : "mp4,m4a,mp3,ac3,avi");
            media.video = random.word("h264,h264,mpeg2video,vp8");
            media.videoProfile =
                media.video == "h264" ? random.word("constrained baseline,main,high") : "main";
            media.level = random.number(media.video == "h264" ? "13,30,40,41" : "8,8,10,4");
            media.depth = 8;
            media.range = "SDR";
            media.audio = random.word("ac3,aac,mp3,mp2");
            media.audioProfile = media.audio == "aac" ? random.word("lc,he-aac") : "";
            media.videoBitrate = (1 + random.below(25)) * 1'000'000;
            const bool isBare = media.container == "mp3"   ? media.audio == "mp3"
                                : media.container == "ac3" ? media.audio == "ac3"
                                                           : true;
            if (!isBare) continue;
            const bool isKept = keeps(*imported.profile, media);
            const bool isPlayed = server.plays(media, {});
            count.played += isPlayed ? 1 : 0;
            count.needless += isPlayed && !isKept ? 1 : 0;
            ASSERT_TRUE(!isKept || server.plays(media, imported.leftOut))
                << "kept, but not played: " << media.container << " " << media.video << " "
                << media.videoProfile << " " << media.level << " " << media.width << "x"
                << media.height << " " << media.audio << " " << media.rate << " " << media.channels
                << "\n"
                << imported.xml;
        }
        EXPECT_GT(count.played, 0) << name;
        EXPECT_LE(count.needless * 20, count.played) << name;
        std::cout << name << ": " << count.played << " played, " << count.needless
                  << " of them transcoded\n";
    }
}

} // namespace
} // namespace vornak::test

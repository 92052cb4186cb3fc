// Files made at random: what a server of Jellyfin's kind would play as it is, by a plain statement
// of its rules, beside what the imported profile keeps.
#include "include/vornak_host.h"
#include "tools/check/checks.h"
#include "tools/import/import_file.h"
#include "tools/import/profile_text.h"

#include "tests/support/loaded_profile.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

namespace vornak::test {
namespace {

using nlohmann::json;
using tool::Remark;

/// A file in the words of the foreign system. Numbers of 0 and empty words aren't known.
struct Media {
    bool isVideo;
    std::string container, video, videoProfile, range, audio, audioProfile;
    int width, height, level, videoBitrate, depth, channels, audioBitrate, rate, frameRate, refs,
        tracks;
    bool interlaced, anamorphic, variableRate;
};

std::vector<std::string> splitWords(const std::string &list, char separator)
{
    std::vector<std::string> words;
    std::istringstream stream(list);
    for (std::string word; std::getline(stream, word, separator);)
        if (const auto start = word.find_first_not_of(' '); start != std::string::npos)
            words.push_back(word.substr(start, word.find_last_not_of(' ') + 1 - start));
    return words;
}

/// The foreign server's rules, once more and straight from their description.
class Server {
public:
    /// @param ignored  lines whose conditions don't count
    Server(const json &profile, std::set<int> ignored)
        : profile_(profile), ignored_(std::move(ignored))
    {}

    bool plays(const Media &media) const
    {
        // one format to ffmpeg, and WebM by what it holds
        const auto isWebm = [](const std::string &codec) {
            return codec.empty() || codec.starts_with("vp") || codec == "av1" || codec == "opus" ||
                   codec == "vorbis";
        };
        if (media.container != "matroska" && media.container != "webm") return playsAs(media);
        Media same = media;
        same.container = "matroska";
        const bool plays = playsAs(same);
        same.container = "webm";
        return plays || (isWebm(media.video) && isWebm(media.audio) && playsAs(same));
    }

private:
    bool playsAs(const Media &media) const
    {
        for (const json &direct : entries(profile_, "DirectPlayProfiles")) {
            const bool isVideo = isOne(direct, "Type", "video", "1");
            if (isVideo != media.isVideo || (!isVideo && !isOne(direct, "Type", "audio", "0")))
                continue;
            if (!lists(direct, "Container", media.container) ||
                !lists(direct, "AudioCodec", media.audio) ||
                (isVideo && !lists(direct, "VideoCodec", media.video)))
                continue;
            if (allHold(media)) return true;
        }
        return false;
    }

    static std::string lower(std::string text)
    {
        std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
        return text;
    }
    static const json *member(const json &object, const std::string &key)
    {
        for (const auto &[name, value] : object.items())
            if (lower(name) == lower(key)) return &value;
        return nullptr;
    }
    static std::string text(const json &object, const std::string &key)
    {
        const json *value = member(object, key);
        return !value ? "" : value->is_string() ? value->get<std::string>() : value->dump();
    }
    static const json &entries(const json &object, const std::string &key)
    {
        static const json none = json::array();
        const json *list = member(object, key);
        return list ? *list : none;
    }
    static bool isOne(const json &object, const char *key, const char *name, const char *number)
    {
        const std::string value = lower(text(object, key));
        return value == name || value == number;
    }
    static bool lists(const json &object, const char *key, const std::string &word)
    {
        std::string list = text(object, key);
        const bool except = list.starts_with('-');
        if (except) list.erase(0, 1);
        const std::vector<std::string> words = splitWords(list, ',');
        const bool found = std::ranges::any_of(words, [&](const std::string &each) {
            return lower(each) == word || (each == "mkv" && word == "matroska") ||
                   (each == "ts" && word == "mpegts");
        });
        return words.empty() || found != except;
    }

    bool allHold(const Media &media) const
    {
        for (const json &limits : entries(profile_, "CodecProfiles")) {
            const bool picture = isOne(limits, "Type", "video", "0");
            const bool sound = isOne(limits, "Type", media.isVideo ? "videoaudio" : "audio",
                                     media.isVideo ? "1" : "2");
            if (!(picture && media.isVideo) && !sound) continue;
            if (!lists(limits, "Codec", picture ? media.video : media.audio) ||
                !lists(limits, "Container", media.container))
                continue;
            if (hold(limits, "ApplyConditions", media, true) &&
                !hold(limits, "Conditions", media, false))
                return false;
        }
        for (const json &limits : entries(profile_, "ContainerProfiles"))
            if (isOne(limits, "Type", media.isVideo ? "video" : "audio",
                      media.isVideo ? "1" : "0") &&
                lists(limits, "Container", media.container) &&
                !hold(limits, "Conditions", media, false))
                return false;
        return true;
    }

    bool hold(const json &limits, const char *key, const Media &media, bool isApplying) const
    {
        return std::ranges::all_of(entries(limits, key), [&](const json &condition) {
            const bool isIgnored = ignored_.contains(condition.at("Line").get<int>());
            const std::string value = lower(valueOf(lower(text(condition, "Property")), media));
            if (isIgnored && (!isApplying || value.empty())) return !isApplying;
            return holds(condition, value);
        });
    }

    static std::string valueOf(const std::string &property, const Media &m)
    {
        const auto number = [](int value) { return value > 0 ? std::to_string(value) : ""; };
        const auto flag = [](bool value) { return value ? "true" : "false"; };
        if (property == "audiochannels" || property == "0") return number(m.channels);
        if (property == "audiobitrate") return number(m.audioBitrate);
        if (property == "audiosamplerate") return number(m.rate);
        if (property == "audioprofile") return m.audioProfile;
        if (property == "audiobitdepth")
            return m.audio == "pcm_s16le" ? "16" : m.audio == "pcm_s24le" ? "24" : "";
        if (property == "width") return number(m.width);
        if (property == "height") return number(m.height);
        if (property == "videobitrate") return number(m.videoBitrate);
        if (property == "videolevel") return number(m.level);
        if (property == "videobitdepth") return number(m.depth);
        if (property == "videoprofile") return m.videoProfile;
        if (property == "videorangetype") return m.range;
        if (property == "videoframerate") return number(m.frameRate);
        if (property == "refframes") return number(m.refs);
        if (property == "numaudiostreams") return number(m.tracks);
        if (property == "isinterlaced") return flag(m.interlaced);
        if (property == "isanamorphic") return flag(m.anamorphic);
        if (property == "issecondaryaudio") return "false";
        throw std::runtime_error("no model of " + property);
    }

    static bool holds(const json &condition, const std::string &value)
    {
        if (value.empty()) return text(condition, "IsRequired") == "false";
        const std::string wanted = lower(text(condition, "Value"));
        const std::string test = lower(text(condition, "Condition"));
        const auto isSame = [&](const std::string &one) {
            return one == value || (one == "hdr10" && value == "hdr10plus");
        };
        if (test == "equals" || test == "0") return isSame(wanted);
        if (test == "notequals" || test == "1") return wanted != value;
        const bool isUp = test == "lessthanequal" || test == "2";
        if (isUp || test == "greaterthanequal" || test == "3") {
            const auto isNumber = [](const std::string &word) {
                return word.find_first_not_of("0123456789") == std::string::npos;
            };
            if (!isNumber(value) || !isNumber(wanted)) return false;
            return isUp ? std::stoll(value) <= std::stoll(wanted)
                        : std::stoll(value) >= std::stoll(wanted);
        }
        return std::ranges::any_of(splitWords(wanted, '|'), isSame);
    }

    const json &profile_;
    std::set<int> ignored_;
};

/// Puts a member "Line" into every condition, which stands alone on a line that is "{ "Condition"".
json parseWithLines(const std::string &text)
{
    std::istringstream lines(text);
    std::string all;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        for (const char *const start : {"{ \"Condition\"", "{ \"condition\""})
            if (const auto at = line.find(start); at != std::string::npos)
                line.insert(at + 2, "\"Line\": " + std::to_string(number) + ", ");
        all += line + '\n';
    }
    return json::parse(all);
}

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    int below(int end) { return std::uniform_int_distribution<>(0, end - 1)(engine_); }
    bool oneIn(int n) { return below(n) == 0; }
    template <class Value>
    Value oneOf(const std::vector<Value> &values)
    {
        return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
    }
    std::string word(const std::string &list) { return oneOf(splitWords(list, ',')); }
    int number(const std::string &list) { return std::stoi(word(list)); }

private:
    std::mt19937 engine_;
};

struct CodecFacts {
    const char *codec, *profiles, *levels;
};
const std::vector<CodecFacts> s_Pictures = {
    {"h264", "constrained baseline,baseline,main,high,high,high,high,high 10",
     "13,30,31,31,40,41,41,42,50,51,52"},
    {"hevc", "main,main,main 10,rext", "90,93,120,123,150,153,156"},
    {"vp9", "profile 0,profile 0,profile 2", "0"},
    {"mpeg2video", "main,main,high", "8,4,10"},
    {"mpeg4", "simple profile,advanced simple profile", "1,5"},
    {"av1", "main", "8,9"},
    {"vp8", "", "0"},
    {"vc1", "advanced,main", "3"},
    {"wmv3", "main", "2"},
};
const std::vector<CodecFacts> s_Sounds = {
    {"aac", "lc,lc,he-aac,he-aacv2", ""},
    {"ac3", "", ""},
    {"eac3", "", ""},
    {"mp3", "", ""},
    {"mp2", "", ""},
    {"dts", "dts", ""},
    {"opus", "", ""},
    {"vorbis", "", ""},
    {"flac", "", ""},
    {"truehd", "", ""},
    {"pcm_s16le", "", ""},
    {"pcm_s24le", "", ""},
    {"wmav2", "", ""},
    {"wmapro", "", ""},
    {"alac", "", ""},
};

Media anyMedia(Random &random)
{
    Media media{};
    media.isVideo = !random.oneIn(4);
    media.container = random.word(media.isVideo ? "mp4,matroska,mpegts,webm,avi,asf,mov,flv,mpegps"
                                                : "mp3,flac,wav,m4a,ogg,adts,matroska,ape,aiff");
    const CodecFacts sound = random.oneOf(s_Sounds);
    media.audio = sound.codec;
    if (*sound.profiles) media.audioProfile = random.word(sound.profiles);
    media.channels = random.number("1,2,2,2,6,6,8");
    media.audioBitrate = random.number("64000,128000,192000,320000,448000,640000,1509000,4000000");
    media.rate = random.number("22050,32000,44100,44100,48000,48000,48000,96000,192000");
    media.tracks = random.number("1,1,1,2");
    if (!media.isVideo) return media;
    const CodecFacts picture = random.oneOf(s_Pictures);
    media.video = picture.codec;
    if (*picture.profiles) media.videoProfile = random.word(picture.profiles);
    media.level = random.number(picture.levels);
    const auto sizes = splitWords(random.word("320x240,640x480,720x480,720x576,1280x720,1920x800,"
                                              "1920x1080,1920x1080,1080x1920,2560x1440,3840x1600,"
                                              "3840x2160,4096x2160"),
                                  'x');
    media.width = std::stoi(sizes[0]);
    media.height = std::stoi(sizes[1]);
    media.videoBitrate = (1 + random.below(80)) * 1'000'000;
    const bool isDeep = media.videoProfile.ends_with("10") || media.videoProfile == "rext" ||
                        media.videoProfile == "profile 2" ||
                        (media.video == "av1" && random.oneIn(2));
    media.depth = isDeep ? 10 : 8;
    media.range = isDeep ? random.word("SDR,SDR,HDR10,HDR10,HDR10Plus,HLG,DOVI") : "SDR";
    const bool hasFields = media.video == "h264" || media.video == "mpeg2video" ||
                           media.video == "mpeg4" || media.video == "vc1";
    media.interlaced = hasFields && media.height <= 1080 && random.oneIn(5);
    media.variableRate = random.oneIn(25);
    media.anamorphic = random.oneIn(10);
    media.frameRate = random.number("24,25,30,50,60,120");
    media.refs = random.number("1,3,4,5,16");
    return media;
}

/// Whether the library keeps the file as it is.
bool keeps(const TRANSCODE_DEVICE_PROFILE_ST &profile, const Media &m)
{
    const auto codec = [](const std::string &name) {
        int id = 0;
        EXPECT_EQ(CodecNameToID(name.c_str(), &id), 0) << name;
        return id;
    };
    const auto bits = [](std::string name) {
        for (const char *const drop : {" ", "-", "profile"})
            while (name.find(drop) != std::string::npos && name.find("profile ") != 0)
                name.erase(name.find(drop), std::string(drop).size());
        std::erase(name, ' ');
        int bit = 0;
        EXPECT_TRUE(name.empty() || ProfileNameToID(name.c_str(), &bit) == 0) << name;
        return bit;
    };
    int oddities = 0;
    const auto addOddity = [&](const char *name) {
        int bit = 0;
        EXPECT_EQ(PlayExceptionNameToID(name, &bit), 0);
        oddities |= bit;
    };
    if (m.interlaced) addOddity("interlaced");
    if (m.depth == 10) addOddity("10bit");
    if (m.variableRate) addOddity("vfr");
    if (m.range == "DOVI") addOddity("dolby_vision");
    if (m.range.starts_with("H")) addOddity("hdr");
    int format = 0;
    EXPECT_EQ(ContainerFormatNameToID(m.container.c_str(), nullptr, &format), 0);
    if (m.container == "mp4") ContainerFormatNameToID("mp4", "isom", &format);
    int video = 0, audio = 0, entry = 0, container = -1; // which it stays without rules
    const int audioProfile = bits(m.audioProfile);
    int result = 0;
    if (m.isVideo)
        result = getVideoTranscodeIndex(
            profile.pVideoTable, codec(m.video), bits(m.videoProfile), m.level, m.width, m.height,
            m.videoBitrate, codec(m.audio), audioProfile, 0, m.channels, m.audioBitrate, m.rate,
            format, &video, &audio, &entry, nullptr, nullptr, &container, 1, 0, 0, oddities);
    else
        result = getMusicTranscodeIndex(profile.pAudioTable, codec(m.audio), audioProfile, 0,
                                        m.channels, m.audioBitrate, m.rate, format, &audio, &entry,
                                        nullptr, nullptr, &container);
    return result == 1 && container != -1;
}

struct Imported {
    LoadedProfile profile;
    std::set<int> leftOut; // lines
    std::string xml;
    std::vector<std::string> faults;
};

Imported import(const std::string &text)
{
    const TempDir folder;
    tool::Player player =
        tool::readForeignProfile({folder.write("foreign.json", text), {}, {}, {}, false});
    const tool::DeviceRules rules = tool::makeRules(player);
    Imported imported;
    imported.xml = tool::profileText(player, rules, "Made by a test.");
    const std::string path = folder.write("profile.xml", imported.xml);
    imported.profile.reset(
        ParseSingleTranscodeXML(path.c_str(), VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0));
    for (const Remark &remark : player.remarks)
        if (remark.kind == Remark::LeftOut) imported.leftOut.insert(remark.line);
    for (const tool::Finding &finding : tool::checkProfile(path))
        if (tool::kindOf(finding.fault).severity != tool::Severity::Note)
            imported.faults.push_back(std::to_string(finding.line) + ": " + finding.problem);
    return imported;
}

struct Count {
    int played = 0, needless = 0;
};

/// Compares the two for files made at random. None may be kept that the server wouldn't play,
/// but for conditions that were named as left out.
Count compare(const std::string &text, unsigned seed, int files)
{
    Imported imported;
    try {
        imported = import(text);
    } catch (const std::exception &error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("nothing to transcode to"));
        return {};
    }
    EXPECT_EQ(imported.faults, std::vector<std::string>{}) << imported.xml;
    const json profile = parseWithLines(text);
    const Server server(profile, {});
    const Server lenient(profile, imported.leftOut);
    Random random(seed);
    Count count;
    for (int i = 0; i < files; ++i) {
        const Media media = anyMedia(random);
        const bool isKept = keeps(*imported.profile, media);
        const bool isPlayed = server.plays(media);
        count.played += isPlayed ? 1 : 0;
        count.needless += isPlayed && !isKept ? 1 : 0;
        if (!isKept || lenient.plays(media)) continue;
        ADD_FAILURE() << "seed " << seed << ": kept, but not played: " << media.container << " "
                      << media.video << " " << media.videoProfile << " " << media.level << " "
                      << media.width << "x" << media.height << " " << media.range << " "
                      << media.audio << " " << media.audioProfile << " " << media.channels << "\n"
                      << text << imported.xml;
        break;
    }
    return count;
}

unsigned newSeed()
{
    const unsigned seed = std::random_device{}();
    std::cout << "seed " << seed << "\n";
    return seed;
}

TEST(ImportMeasure, OfWrittenProfiles)
{
    const unsigned seed = newSeed();
    for (const char *const name : {"browser", "television", "recent", "everything"}) {
        std::ifstream file(VORNAK_SOURCE_DIR "/tests/tools/import/" + std::string(name) + ".json");
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        const Count count = compare(text, seed, 5000);
        EXPECT_GT(count.played, 100) << name;
        EXPECT_LE(count.needless * 20, count.played) << name << ", seed " << seed;
        std::cout << name << ": " << count.played << " played, " << count.needless
                  << " of them transcoded\n";
    }
}

std::string anyList(Random &random, const std::string &words, int absent)
{
    if (random.oneIn(absent)) return "";
    std::string list = random.oneIn(8) ? "-" : "";
    for (int i = random.below(4); i >= 0; --i) list += random.word(words) + (i > 0 ? "," : "");
    return list;
}

std::string anyCondition(Random &random)
{
    const auto [property, values] = random.oneOf(std::vector<std::pair<const char *, const char *>>{
        {"Width", "720,1280,1920,3840"},
        {"Height", "480,576,1080,2160"},
        {"VideoBitrate", "10000000,25000000,50000000"},
        {"VideoLevel", "30,41,42,51,123,150"},
        {"VideoBitDepth", "8,10"},
        {"VideoProfile", "high,main,main 10,baseline,profile 0,Advanced Simple Profile"},
        {"VideoRangeType", "SDR,SDR,HDR10,HLG,DOVI"},
        {"IsInterlaced", "true,false"},
        {"VideoFramerate", "30,60"},
        {"AudioChannels", "1,2,6"},
        {"AudioBitrate", "320000,640000"},
        {"AudioSampleRate", "44100,48000,96000,47000"},
        {"AudioProfile", "LC,HE-AAC"},
        {"AudioBitDepth", "16,24"},
    });
    const char *const test = random.oneOf(std::vector<const char *>{
        "Equals", "NotEquals", "LessThanEqual", "LessThanEqual", "GreaterThanEqual", "EqualsAny"});
    std::string value = random.word(values);
    if (std::string_view(test) == "EqualsAny") value += "|" + random.word(values);
    return fmt::format("{{ \"Condition\": \"{}\", \"Property\": \"{}\", \"Value\": \"{}\", "
                       "\"IsRequired\": \"{}\" }}",
                       test, property, value, random.oneIn(3) ? "true" : "false");
}

std::string anyConditions(Random &random, int most)
{
    std::string list;
    for (int i = random.below(most + 1); i > 0; --i)
        list += "\n" + anyCondition(random) + (i > 1 ? "," : "");
    return list + "\n";
}

std::string anyProfile(Random &random)
{
    const std::string containers = "mkv,mp4,ts,avi,mov,asf,webm,mp3,flac";
    std::string direct, limits;
    for (int i = random.below(4); i >= 0; --i)
        direct += fmt::format(R"({{ "Type": "{}", "Container": "{}", "VideoCodec": "{}",
            "AudioCodec": "{}" }}{})",
                              random.word("Video,Video,Audio"), anyList(random, containers, 6),
                              anyList(random, "h264,hevc,vp9,mpeg2video,mpeg4,av1", 5),
                              anyList(random, "aac,mp3,ac3,dts,opus,flac", 5), i > 0 ? "," : "");
    for (int i = random.below(5); i >= 0; --i)
        limits += fmt::format(R"({{ "Type": "{}", "Codec": "{}", "Container": "{}",
            "ApplyConditions": [{}], "Conditions": [{}] }}{})",
                              random.word("Video,Video,VideoAudio,Audio"),
                              anyList(random, "h264,hevc,vp9,mpeg2video,aac,mp3,ac3", 4),
                              anyList(random, containers, 2), anyConditions(random, 2),
                              anyConditions(random, 3), i > 0 ? "," : "");
    return fmt::format("{{ \"DirectPlayProfiles\": [{}],\n\"CodecProfiles\": [{}] }}\n", direct,
                       limits);
}

TEST(ImportMeasure, OfRandomProfiles)
{
    const unsigned seed = newSeed();
    Random random(seed);
    Count all;
    for (int i = 0; i < 60 && !HasFailure(); ++i) {
        const Count count = compare(anyProfile(random), seed + static_cast<unsigned>(i), 300);
        all.played += count.played;
        all.needless += count.needless;
    }
    EXPECT_GT(all.played, 300);
    std::cout << all.played << " played, " << all.needless << " of them transcoded\n";
}

} // namespace
} // namespace vornak::test

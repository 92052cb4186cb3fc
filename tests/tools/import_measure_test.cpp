// What a server of Jellyfin's kind plays as it is, by a plain statement of its rules, beside what
// the imported profile keeps.
#include "tests/tools/imported_media.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace vornak::test {
namespace {

using nlohmann::json;

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

/// Compares the two for files made at random. None may be kept that the server wouldn't play, but
/// for conditions that were named as left out, and none transcoded that it would, unless it is said
/// that the profile is stricter.
Count compare(const std::string &text, Random &random, int files)
{
    const TempDir folder;
    Imported imported;
    try {
        imported = import({folder.write("foreign.json", text), {}, {}, {}, false});
    } catch (const std::exception &error) {
        EXPECT_THAT(error.what(),
                    testing::AnyOf(testing::HasSubstr("nothing to transcode to"),
                                   testing::HasSubstr("more kinds of files than a profile can")));
        return {0, 0, 1};
    }
    EXPECT_EQ(imported.faults, std::vector<std::string>{}) << imported.xml;
    const json profile = parseWithLines(text);
    const Server server(profile, {});
    std::set<int> lines;
    for (const auto &[file, line] : imported.leftOut) lines.insert(line);
    const Server lenient(profile, lines);
    Count count;
    for (int i = 0; i < files; ++i) {
        const Media media = anyMedia(random);
        const bool isKept = keeps(*imported.profile, media);
        const bool isPlayed = server.plays(media);
        count.played += isPlayed ? 1 : 0;
        count.needless += isPlayed && !isKept ? 1 : 0;
        if (!isKept || lenient.plays(media)) continue;
        ADD_FAILURE() << "kept, but not played: " << media.container << " " << media.video << " "
                      << media.videoProfile << " " << media.level << " " << media.width << "x"
                      << media.height << " " << media.range << " " << media.audio << " "
                      << media.audioProfile << " " << media.channels << "\n"
                      << text << imported.xml;
        break;
    }
    EXPECT_TRUE(count.needless == 0 || imported.isStricter) << text << imported.xml;
    return count;
}

TEST(ImportMeasure, OfWrittenProfiles)
{
    const unsigned seed = firstSeed();
    for (const char *const name : {"browser", "television", "recent", "everything"}) {
        std::ifstream file(VORNAK_SOURCE_DIR "/tests/tools/import/" + std::string(name) + ".json");
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        Random random(seed);
        const Count count = compare(text, random, 1500);
        EXPECT_GT(count.played, 10) << name;
        EXPECT_LE(count.needless * 20, count.played) << name;
        std::cout << name << ": " << count.played << " played, " << count.needless
                  << " of them transcoded\n";
    }
}

constexpr const char *kContainers = "mkv,mp4,ts,avi,mov,asf,webm,mp3,flac";

std::string anyList(Random &random, const std::string &words, int absent)
{
    if (random.oneIn(absent)) return "";
    std::string list = random.oneIn(8) ? "-" : "";
    for (int i = random.below(4); i >= 0; --i) list += random.word(words) + (i > 0 ? "," : "");
    return list;
}

struct PropertyFacts {
    const char *name;
    bool canBeTold;    ///< by a rule, so that it is used for applying
    const char *usual; ///< what people ask of it
    const char *values;
};
const std::vector<PropertyFacts> s_OfPictures = {
    {"Width", true, "LessThanEqual 1920,LessThanEqual 3840,LessThanEqual 1280,GreaterThanEqual 720",
     "720,1280,1920,3840"},
    {"Height", true, "LessThanEqual 1080,LessThanEqual 2160,GreaterThanEqual 576,NotEquals 480",
     "480,576,1080,2160"},
    {"VideoBitrate", true, "LessThanEqual 10000000,LessThanEqual 25000000",
     "10000000,25000000,50000000"},
    {"VideoLevel", true, "LessThanEqual 41,LessThanEqual 51,LessThanEqual 123,LessThanEqual 150",
     "30,41,42,51,123,150"},
    {"VideoBitDepth", true, "LessThanEqual 8,LessThanEqual 10,Equals 8", "8,10"},
    {"VideoProfile", true,
     "EqualsAny high|main|baseline,EqualsAny main|main 10,NotEquals high,Equals profile 0",
     "high,main,main 10,baseline,profile 0,Advanced Simple Profile"},
    {"VideoRangeType", true,
     "EqualsAny SDR|HDR10,EqualsAny SDR|HDR10|HLG,Equals SDR,NotEquals DOVI,NotEquals HDR10",
     "SDR,HDR10,HLG,DOVI"},
    {"IsInterlaced", true, "NotEquals true,Equals false", "true,false"},
    {"VideoFramerate", false, "LessThanEqual 30,LessThanEqual 60", "30,60"},
};
const std::vector<PropertyFacts> s_OfSound = {
    {"AudioChannels", true, "LessThanEqual 2,LessThanEqual 6,Equals 2", "1,2,6"},
    {"AudioBitrate", true, "LessThanEqual 320000,LessThanEqual 640000", "320000,640000"},
    {"AudioSampleRate", true, "LessThanEqual 48000,LessThanEqual 96000,Equals 44100",
     "44100,48000,96000,47000"},
    {"AudioProfile", true, "Equals LC,EqualsAny LC|HE-AAC,NotEquals HE-AAC", "LC,HE-AAC"},
    {"AudioBitDepth", false, "LessThanEqual 16,LessThanEqual 24", "16,24"},
};

/// A condition as people write it; one in ten asks anything of anything.
std::string anyCondition(Random &random, bool isForSound, bool isApplying)
{
    const bool isOdd = random.oneIn(10);
    const auto &facts = isForSound == (isOdd && random.oneIn(2)) ? s_OfPictures : s_OfSound;
    PropertyFacts property = random.oneOf(facts);
    while (isApplying && !isOdd && !property.canBeTold) property = random.oneOf(facts);
    std::string usual = random.word(property.usual);
    const std::size_t blank = usual.find(' ');
    std::string test = usual.substr(0, blank), value = usual.substr(blank + 1);
    if (isOdd) {
        test = random.word("Equals,NotEquals,LessThanEqual,GreaterThanEqual,EqualsAny");
        value = random.word(property.values);
        if (test == "EqualsAny") value += "|" + random.word(property.values);
    }
    return fmt::format("{{ \"Condition\": \"{}\", \"Property\": \"{}\", \"Value\": \"{}\", "
                       "\"IsRequired\": \"{}\" }}",
                       test, property.name, value, random.oneIn(3));
}

std::string anyConditions(Random &random, bool isForSound, bool isApplying)
{
    const int most = isApplying ? 2 : 3;
    std::string list;
    for (int i = random.below(most + 1); i > 0; --i)
        list += "\n" + anyCondition(random, isForSound, isApplying) + (i > 1 ? "," : "");
    return list + "\n";
}

/// Members of an object, drawn in their order, which calls' arguments are not.
std::string anyDirectPlay(Random &random)
{
    const std::string type = random.word("Video,Video,Audio");
    const std::string container = anyList(random, kContainers, 6);
    const std::string video = anyList(random, "h264,hevc,vp9,mpeg2video,mpeg4,av1", 5);
    const std::string audio = anyList(random, "aac,mp3,ac3,dts,opus,flac", 5);
    return fmt::format(
        R"({{ "Type": "{}", "Container": "{}", "VideoCodec": "{}", "AudioCodec": "{}" }})", type,
        container, video, audio);
}

std::string anyCodecProfile(Random &random)
{
    const std::string type = random.word("Video,Video,VideoAudio,Audio");
    const std::string codec = anyList(random, "h264,hevc,vp9,mpeg2video,aac,mp3,ac3", 4);
    const std::string container = anyList(random, kContainers, 2);
    const std::string applying = anyConditions(random, type != "Video", true);
    const std::string conditions = anyConditions(random, type != "Video", false);
    return fmt::format(R"({{ "Type": "{}", "Codec": "{}", "Container": "{}",
            "ApplyConditions": [{}], "Conditions": [{}] }})",
                       type, codec, container, applying, conditions);
}

std::string anyProfile(Random &random)
{
    std::vector<std::string> direct(1 + static_cast<std::size_t>(random.below(4)));
    for (std::string &each : direct) each = anyDirectPlay(random);
    std::vector<std::string> limits(1 + static_cast<std::size_t>(random.below(5)));
    for (std::string &each : limits) each = anyCodecProfile(random);
    return fmt::format("{{ \"DirectPlayProfiles\": [{}],\n\"CodecProfiles\": [{}] }}\n",
                       fmt::join(direct, ","), fmt::join(limits, ","));
}

TEST(ImportMeasure, OfRandomProfiles)
{
    const unsigned seed = firstSeed();
    Count all;
    constexpr bool kIsSlow = VORNAK_SANITIZED; // so that it runs too few for a share
    const unsigned profiles = rounds(kIsSlow ? 15 : 100);
    for (unsigned i = 0; i < profiles; ++i) {
        SCOPED_TRACE("VORNAK_SEED=" + std::to_string(seed + i));
        Random random(seed + i);
        const std::string profile = anyProfile(random);
        const Count count = compare(profile, random, 300);
        all.played += count.played;
        all.needless += count.needless;
        all.refused += count.refused;
    }
    EXPECT_LT(all.refused, profiles / 3);
    EXPECT_GT(all.played, 100);
    EXPECT_TRUE(kIsSlow || all.needless * 20 <= all.played);
    std::cout << all.played << " played, " << all.needless << " of them transcoded\n";
}

} // namespace
} // namespace vornak::test

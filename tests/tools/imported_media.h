// Files made at random, and what the library decides of them by an imported profile.
#pragma once

#include "include/vornak_host.h"
#include "tools/check/checks.h"
#include "tools/import/foreign_profile.h"
#include "tools/import/profile_text.h"

#include "tests/support/loaded_profile.h"
#include "tests/support/temp_dir.h"

#include <gmock/gmock.h>
#include <random>
#include <set>
#include <sstream>

namespace vornak::test {

/// A file in the words of the foreign system. Numbers of 0 and empty words aren't known.
struct Media {
    bool isVideo;
    std::string container, video, videoProfile, range, audio, audioProfile;
    int width, height, level, videoBitrate, depth, channels, audioBitrate, rate, frameRate, refs,
        tracks;
    bool interlaced, anamorphic, variableRate;
};

inline std::vector<std::string> splitWords(const std::string &list, char separator)
{
    std::vector<std::string> words;
    std::istringstream stream(list);
    for (std::string word; std::getline(stream, word, separator);)
        if (const auto start = word.find_first_not_of(' '); start != std::string::npos)
            words.push_back(word.substr(start, word.find_last_not_of(' ') + 1 - start));
    return words;
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
inline const std::vector<CodecFacts> s_Pictures = {
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
inline const std::vector<CodecFacts> s_Sounds = {
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

inline Media anyMedia(Random &random)
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
inline bool keeps(const TRANSCODE_DEVICE_PROFILE_ST &profile, const Media &m)
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
    std::set<std::pair<std::string, int>> leftOut; // files and lines
    bool isStricter = false;
    std::string xml;
    std::vector<std::string> faults;
};

inline Imported import(const tool::ImportOptions &options)
{
    const TempDir folder;
    tool::Player player = tool::readForeignProfile(options);
    const tool::DeviceRules rules = tool::makeRules(player);
    Imported imported;
    imported.xml = tool::profileText(player, rules, "Made by a test.");
    const std::string path = folder.write("profile.xml", imported.xml);
    imported.profile.reset(
        ParseSingleTranscodeXML(path.c_str(), VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0));
    for (const tool::Remark &remark : player.remarks)
        if (remark.kind != tool::Remark::Stricter)
            imported.leftOut.insert({remark.file, remark.line});
        else
            imported.isStricter = true;
    for (const tool::Finding &finding : tool::checkProfile(path))
        if (tool::kindOf(finding.fault).severity != tool::Severity::Note)
            imported.faults.push_back(std::to_string(finding.line) + ": " + finding.problem);
    return imported;
}

struct Count {
    unsigned played = 0, needless = 0, refused = 0; // files, and profiles
};

/// Where the random numbers begin: the same on every run, or as VORNAK_SEED says: a number, or
/// "random". Told, so that what fails can be run again.
inline unsigned firstSeed()
{
    const char *const wanted = std::getenv("VORNAK_SEED");
    const std::string word = wanted ? wanted : "1";
    const unsigned seed =
        word == "random" ? std::random_device{}() : static_cast<unsigned>(std::stoul(word));
    std::cout << "VORNAK_SEED=" << seed << "\n";
    return seed;
}

/// How many rounds to run: a few, or as many as VORNAK_ROUNDS says.
inline unsigned rounds(unsigned usual)
{
    const char *const wanted = std::getenv("VORNAK_ROUNDS");
    return wanted ? static_cast<unsigned>(std::stoul(wanted)) : usual;
}

} // namespace vornak::test

#include "tools/import/described_player.h"

#include "base/ascii_case.h"
#include "base/media_ids.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "profile/numbers.h"
#include "tools/import/announcement.h"
#include "tools/import/limits.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"
#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace vornak::tool {
namespace {

using Words = std::vector<std::string>;

/// Lists of what the options take, with blanks between.
constexpr struct Like {
    const char *name, *playerName, *video, *audio, *music, *containers;
} s_Likes[] = {
    {"tv", "TV",
     "h264:high:4.2,1920x1080 hevc:main10:5.1,3840x2160 vp9:profile2,3840x2160 "
     "mpeg2video:main,1920x1080",
     "ac3:6 eac3:6 aac:he_v2:6 mp3:2 mp2:2", "mp3:2 aac:he_v2:6 flac:6 pcm_s16le:2 wmav2:2",
     "mpegts mp4 matroska"},
    {"older-tv", "Older TV",
     "mpeg2video:main,720x576 h264:high:4.0,1920x1080 mpeg4:advanced_simple,720x576",
     "ac3:6 mp2:2 mp3:2 aac:lc:2", "mp3:2 pcm_s16le:2", "mpegps mpegts avi mp4"},
    {"phone", "Phone",
     "h264:main:3.1,1280x720 hevc:main:4.0,1920x1080 vp9:profile0,1920x1080 vp8,1280x720",
     "aac:he_v2:2 opus:2 vorbis:2", "aac:he_v2:2 mp3:2 flac:2 opus:2 vorbis:2", "mp4 webm"},
    {"desktop", "Desktop player", "h264 hevc vp9 av1 mpeg4 mpeg2video vp8 vc1 wmv3 mjpeg",
     "aac ac3 eac3 mp3 opus vorbis flac dts mp2 pcm_s16le wmav2",
     "flac mp3 aac alac opus vorbis pcm_s16le pcm_s24le wmav2 wavpack ape",
     "matroska mp4 mpegts webm avi mpegps mov asf ogg"},
    {"hifi", "Hi-fi streamer", "", "", "pcm_s16le:2 pcm_s24le:2 flac:2 alac:2 mp3:2 aac:2 vorbis:2",
     ""},
};

[[noreturn]] void refuse(const char *option, const std::string &value, const std::string &why)
{
    throw std::runtime_error(fmt::format("{} {}: {}", option, printable(value), why));
}

Words codecNameList()
{
    Words names;
    for (const RegistryName &row : s_CodecNames)
        if (row.id > 0) names.emplace_back(row.name);
    return names;
}

int readCodec(const char *option, const std::string &given, const std::string &name, bool picture)
{
    const int codec = codecNamed(name);
    if (codec <= 0)
        refuse(option, given,
               fmt::format("there is no codec {}{}", printable(name),
                           didYouMean(name, codecNameList())));
    if (isPicture(codec) != picture)
        refuse(option, given,
               fmt::format("{} is no {} codec", printable(name), picture ? "video" : "audio"));
    return codec;
}

/// Who plays the one plays the others too.
constexpr struct {
    const char *codec, *profile, *included;
} s_Included[] = {
    {"h264", "baseline", "baseline|constrained_baseline"},
    {"h264", "main", "baseline|constrained_baseline|main"},
    {"h264", "high", "baseline|constrained_baseline|main|high"},
    {"h264", "high10", "baseline|constrained_baseline|main|high|high10"},
    {"hevc", "main10", "main|main10"},
    {"vp9", "profile2", "profile0|profile2"},
    {"mpeg2video", "main", "simple|main"},
    {"mpeg2video", "high", "simple|main|high"},
    {"mpeg4", "advanced_simple", "simple|advanced_simple"},
    {"aac", "he", "lc|he"},
    {"aac", "he_v2", "lc|he|he_v2"},
};

int readProfiles(const char *option, const std::string &given, int codec, const std::string &name)
{
    const Words known = profileTexts(allProfilesOf(codec), codec);
    if (!codecHasProfile(codec, name.c_str()))
        refuse(option, given,
               fmt::format("{} has no profile {}{}", codecText(codec), printable(name),
                           nearestOrAll(name, known)));
    const int bits = profilesNamed(name);
    for (const auto &row : s_Included)
        if (codecNamed(row.codec) == codec && profilesNamed(row.profile) == bits)
            return profilesNamed(row.included);
    return bits;
}

/// A number, perhaps with K or M, that is all of the text and above 0; 0: it isn't.
int readNumber(const std::string &text)
{
    const Number number = readSuffixedNumber(text.c_str());
    const bool isWhole = *number.end == '\0' && !number.overflows;
    return isWhole && number.value > 0 ? number.value : 0;
}

/// "6", or "5.1"; 0: it isn't.
int readChannels(const std::string &text)
{
    constexpr int kMost = 64;
    const std::size_t point = text.find('.');
    const std::string_view part = std::string_view(text).substr(std::min(point, text.size()));
    const int whole = readNumber(text.substr(0, point));
    const bool isCount = text.find_first_not_of("0123456789.") == std::string::npos &&
                         whole <= kMost && (part.empty() || part == ".0" || part == ".1");
    return !isCount || whole == 0 ? 0 : whole + (part == ".1" ? 1 : 0);
}

/// "; write 4.1" for a level that is written as its stream codes it.
std::string levelMeant(int codec, const std::string &text)
{
    if (text.size() != 2) return {};
    const std::string level = fmt::format("{}.{}", text[0], text[1]);
    return codedLevel(codec, level) ? "; write " + level : "";
}

void readSizeOrRate(const std::string &given, const std::string &word, Limits &limits)
{
    const std::size_t times = word.find('x');
    if (times == std::string::npos) {
        constexpr int kLeastBitrate = 10'000; // else kilobits or a width are meant
        limits.bitrate.most = readNumber(word);
        if (codecNamed(word) > 0) refuse("--video", given, "give each codec a --video of its own");
        if (limits.bitrate.most < kLeastBitrate)
            refuse("--video", given,
                   fmt::format("{} is neither a size, such as 1920x1080, nor a "
                               "bit rate, such as 25M",
                               printable(word)));
        return;
    }
    limits.width.most = readNumber(word.substr(0, times));
    limits.height.most = readNumber(word.substr(times + 1));
    if (limits.width.most == 0 || limits.height.most == 0)
        refuse("--video", given,
               fmt::format("{} is no size; write one like 1920x1080", printable(word)));
}

/// CODEC[:PROFILE][:LEVEL][,WIDTHxHEIGHT][,BITRATE]
Limits readPicture(const std::string &given)
{
    Words parts = splitList(given, ',');
    const Words words = parts.empty() ? Words{} : splitList(parts.front(), ':');
    if (words.empty()) refuse("--video", given, "name a codec, such as h264:high:4.1,1920x1080");
    Limits limits;
    limits.codec = readCodec("--video", given, words[0], true);
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::optional<int> level = codedLevel(limits.codec, words[i]);
        if (level)
            limits.level = *level;
        else if (words[i].find_first_not_of("0123456789.") == std::string::npos)
            refuse("--video", given,
                   fmt::format("{} has no level {}{}", codecText(limits.codec), printable(words[i]),
                               levelMeant(limits.codec, words[i])));
        else
            limits.profiles = readProfiles("--video", given, limits.codec, words[i]);
    }
    for (std::size_t i = 1; i < parts.size(); ++i) readSizeOrRate(given, parts[i], limits);
    return limits;
}

/// CODEC[:PROFILE][:CHANNELS]
Limits readSound(const char *option, const std::string &given)
{
    const Words words = splitList(given, ':');
    if (words.empty()) refuse(option, given, "name a codec, such as aac:2");
    Limits limits;
    limits.codec = readCodec(option, given, words[0], false);
    for (std::size_t i = 1; i < words.size(); ++i)
        if (const int channels = readChannels(words[i]); channels > 0)
            limits.channels.most = channels;
        else
            limits.profiles = readProfiles(option, given, limits.codec, words[i]);
    return limits;
}

int readContainer(const std::string &name)
{
    const int format = containerNamed(name);
    if (format <= 0)
        refuse("--container", name,
               "there is no container of that name" + didYouMean(name, knownContainers()));
    return format;
}

/// The containers in which music of a codec is found.
std::vector<int> musicContainers(int codec)
{
    constexpr const char *s_Bare[] = {"mp3",     "flac", "adts",   "ogg",  "wav", "ac3",
                                      "eac3",    "dts",  "truehd", "aiff", "asf", "ape",
                                      "wavpack", "tta",  "mpc",    "dsf",  "dff", "amr"};
    std::vector<int> formats;
    for (const char *const name : s_Bare)
        if (formats.empty() && canHold(containerNamed(name), codec))
            formats.push_back(containerNamed(name));
    if (canHold("mp4/m4a"_container, codec)) formats.push_back("mp4"_container);
    return formats;
}

void addMusic(Player &player, const std::string &option, const std::string &given)
{
    const Limits sound = readSound(option.c_str(), given);
    const std::vector<int> formats = musicContainers(sound.codec);
    if (formats.empty() && option == "--music")
        refuse("--music", given, "no container is known for music of this codec");
    const int origin = originOf(player, fmt::format("{} {}", option.substr(2), printable(given)));
    for (const int format : formats)
        player.ways.push_back({std::nullopt, sound, {musicIn(format, sound)}, {}, {origin}});
    player.wishes.push_back({false, 0, sound.codec, 0});
}

/// Adds what can be: not all codecs are found in all containers.
void addVideo(Player &player, const std::string &given, const Description &description)
{
    const Limits picture = readPicture(given);
    const int origin = originOf(player, fmt::format("video {}", printable(given)));
    const std::size_t before = player.ways.size();
    for (const std::string &audio : description.audio)
        for (const std::string &container : description.containers) {
            const Limits sound = readSound("--audio", audio);
            const int format = readContainer(container);
            if (!canHold(format, picture.codec) || !canHold(format, sound.codec)) continue;
            player.ways.push_back({picture,
                                   sound,
                                   {videoIn(format)},
                                   {origin},
                                   {originOf(player, "audio " + printable(audio))}});
            player.wishes.push_back({true, picture.codec, sound.codec, format});
        }
    if (player.ways.size() == before)
        refuse("--video", given,
               "no container of --container is known to hold it with a codec of "
               "--audio; name others");
}

/// Tells of sounds and containers that are in no video.
void noteUnused(Player &player, const Description &description)
{
    const auto isUsed = [&](auto has) {
        return std::ranges::any_of(player.ways,
                                   [&](const Way &way) { return way.picture && has(way); });
    };
    const auto note = [&](const char *option, const std::string &given, const char *what) {
        player.remarks.insert(
            {{},
             0,
             Remark::LeftOut,
             fmt::format("{} {}: no {} is known to come with it", option, printable(given), what)});
    };
    for (const std::string &audio : description.audio)
        if (const Limits sound = readSound("--audio", audio);
            !isUsed([&](const Way &way) { return way.sound == sound; }))
            note("--audio", audio, "--container with a --video");
    for (const std::string &name : description.containers)
        if (const Container container = videoIn(readContainer(name));
            !isUsed([&](const Way &way) { return way.containers.front() == container; }))
            note("--container", name, "--video with an --audio");
}

template <class Value>
void takeOver(Value &value, const Value &from)
{
    if (value.empty()) value = from;
}

void takeOverFrom(const Like &like, Description &description)
{
    takeOver(description.name, std::string(like.playerName));
    takeOver(description.video, splitList(like.video, ' '));
    takeOver(description.audio, splitList(like.audio, ' '));
    takeOver(description.music, splitList(like.music, ' '));
    takeOver(description.containers, splitList(like.containers, ' '));
}

void takeOverFromLike(Description &description)
{
    if (description.like.empty()) return;
    for (const Like &like : s_Likes)
        if (description.like == like.name) return takeOverFrom(like, description);
    refuse("--like", description.like,
           "there is no such player" + nearestOrAll(description.like, likeNames()));
}

} // namespace

std::vector<std::string> likeNames()
{
    Words names;
    for (const Like &like : s_Likes) names.emplace_back(like.name);
    return names;
}

Player describedPlayer(Description description)
{
    takeOverFromLike(description);
    takeOver(description.name, std::string("Player"));
    const bool tellsMusic = !description.music.empty();
    if (description.video.empty() && description.audio.empty() && !tellsMusic)
        throw std::runtime_error("say what the player takes: --video, --audio and --container, or "
                                 "--music, or --like a kind of player");
    if (!description.video.empty() && (description.audio.empty() || description.containers.empty()))
        throw std::runtime_error("--video needs the sound that comes with it, --audio, and what "
                                 "both come in, --container");
    Player player;
    player.name = description.name;
    for (const std::string &given : tellsMusic ? description.music : description.audio)
        addMusic(player, tellsMusic ? "--music" : "--audio", given);
    for (const std::string &given : description.video) addVideo(player, given, description);
    if (!description.video.empty()) noteUnused(player, description);
    return player;
}

} // namespace vornak::tool

// The bit rates and the pace of real clips, as they are and as broken muxers leave them.
#include "tests/tools/probed_clips.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace vornak::test {
namespace {

using namespace tool;

using ProbeRates = ProbedClips;

/// Writes four bytes at a distance from each `mark`.
std::string overwritten(std::string content, std::string_view mark, std::size_t distance,
                        std::string_view bytes)
{
    for (std::size_t at = 0; (at = content.find(mark, at)) != std::string::npos; at += distance)
        content.replace(at + distance, bytes.size(), bytes);
    return content;
}

std::string withAllOnes(const std::string &mp4)
{
    std::string content = mp4;
    for (const auto &[box, distance] : {std::pair{"mvhd", 20}, {"tkhd", 24}, {"mdhd", 20}})
        content = overwritten(content, box, static_cast<std::size_t>(distance), "\xFF\xFF\xFF\xFF");
    return content;
}

/// As a muxer leaves it that can't go back to its header.
std::string asFromPipe(const std::string &avi)
{
    return replaced(overwritten(avi, "strh", 40, {"\0\0\0\x40", 4}), "idx1", "JUNK");
}

std::string withoutThird(const std::string &film)
{
    return film.substr(0, film.size() * 2 / 3);
}

std::string withoutStatedRates(const std::string &mp4)
{
    return replaced(mp4, "btrt", "free");
}

std::string asWav(const std::string &samples)
{
    using namespace std::string_literals;
    return "RIFF\xFF\xFF\xFF\x7FWAVEfmt \x10\0\0\0\1\0\2\0\x80\xBB\0\0\0\xEE\2\0\4\0\x10\0data"
           "\xFF\xFF\xFF\x7F"s +
           samples;
}

/// What a clip of twelve seconds tells of its bit rates and the pace of its pictures.
struct Told {
    const char *name, *options;
    // As the packets have it, or the frames name it. Negative: the probe estimates it. 1: that of
    // plain.mp4. 0: there is none, or it doesn't matter.
    double video, audio;
    bool varies = false;
    std::string (*change)(const std::string &) = nullptr;
};

constexpr double kAac = 100700, kMp3 = 62800; // six seconds of silence, then six of noise

const Told s_Told[] = {
    {"plain.mp4", "FILM", 1, 1},
    {"all_ones.mp4", "FILM", 1, 1, false, withAllOnes},
    {"fragments.mp4", "FILM -movflags frag_keyframe+empty_moov", 1, 1},
    {"one_index.mp4", "FILM -movflags dash+global_sidx", -1, -1},
    {"plain.mkv", "FILM", -1, -1},
    {"stale.mkv", "FILM -metadata:s:v BPS=12345678 -metadata:s:a BPS=77", -1, -1},
    {"fonts.mkv", "FILM -attach FONT -metadata:s:t mimetype=font/ttf", -1, -1},
    {"plain.ts", "FILM", -1, -1},
    {"plain.flv", "FILM -flvflags no_metadata", -1, -1},
    {"pipe.avi", "-map 0 -map 1 FAST -c:a mp2 -b:a 128k", -1, 128000, false, asFromPipe},
    {"plain.h264", "-map 0 FAST", -1, 0},
    {"cd.mpg", "-map 0 -map 1 -c:v mpeg1video -b:v 1M -c:a mp2 -b:a 192k", -1065000, 192000},
    {"ac3.mp4", "-map 0 -map 1 FAST -c:a ac3 -b:a 640k", 1, 640000, false, withoutStatedRates},
    {"ac3.m2ts", "-map 0 -map 1 FAST -c:a ac3 -b:a 640k -mpegts_m2ts_mode 1", -1, 640000},
    {"dts.mkv", "-map 0 -map 1 FAST -c:a dca -strict -2 -b:a 768k", -1, 768000},
    {"mp3.mov", "-map 0 -map 1 FAST -c:a libmp3lame -b:a 320k", 1, 320000},
    {"mp3.avi", "-map 0 -map 1 FAST -c:a libmp3lame -b:a 128k", 1, 128000},
    {"steady.mp3", "-map 2 -c:a libmp3lame -b:a 128k -write_xing 0", 0, 128000},
    {"steady.mka", "-map 2 -c:a libmp3lame -b:a 128k", 0, 128000},
    {"steady.ts", "-map 2 -c:a libmp3lame -b:a 128k", 0, 128000},
    {"steady.ac3", "-map 2 -c:a ac3 -b:a 128k", 0, 128000},
    {"pcm.wav", "-map 2 -c:a pcm_s24le -ac 2", 0, 2 * 24 * 48000},
    {"spdif.wav", "-map 2 -ac 2 -c:a ac3 -b:a 448k -f spdif", 0, 448000, false, asWav},
    // silence first: the first frames say nothing of the others
    {"silent.m4a", "-map 2 -c:a aac -b:a 192k", 0, kAac},
    {"silent.aac", "-map 2 -c:a aac -b:a 192k", 0, -kAac},
    {"silent.latm", "-map 2 -c:a aac -b:a 192k", 0, -kAac},
    {"silent.ts", "-map 2 -c:a aac -b:a 192k", 0, -kAac},
    {"silent.mp3", "-map 2 -c:a libmp3lame -q:a 2", 0, kMp3},
    {"untold.mp3", "-map 2 -c:a libmp3lame -q:a 2 -write_xing 0", 0, -kMp3},
    {"silent.mka", "-map 2 -c:a libmp3lame -q:a 2", 0, -kMp3},
    {"silent_mp3.ts", "-map 2 -c:a libmp3lame -q:a 2", 0, -kMp3},
    {"silent.flv", "-map 2 -ar 44100 -c:a libmp3lame -q:a 2", 0, -kMp3},
    {"nominal.ogg", "-map 2 -c:a libvorbis", 0, -38275},
    {"cover.flac", "-map 2 -map 3 -c:a flac -c:v copy -disposition:v attached_pic", 0, -547000},
    {"bytes_as_time.avi", "-map 0 -map 1 FAST -c:a libvorbis", 0, -76200},
    {"no_lengths.mka", "-map 2 -c:a wavpack -ac 2", 0, -694700},
    {"quiet_first.aac",
     "-map 2 -af adelay=3000,pan=5.1|c0=c0|c1=c0|c2=c0|c4=c0|c5=c0 -t 12 -c:a aac -b:a 1M", 0,
     -272000},
    {"private.m2ts", "FILM -mpegts_m2ts_mode 1", -1, -1},
    {"not_played.ts", "-map 0 -map 1 FAST -c:a adpcm_ima_wav", -1, 0},
    {"small_frames.ts", "-map 0 -map 1 FAST -c:a truehd -strict -2", -1, -1176500},
    {"packed.ts", "-map 0 -c:v libxvid -bf 2", -242700, 0},
    {"cut.mkv",
     "-map 0 -map 1 -vf loop=1:150:150 -af aloop=1:288000:288000 FAST -c:a ac3 -b:a 448k", -1,
     448000, false, withoutThird},
    {"cut.flac", "-map 1 -c:a flac", 0, -1044000, false, withoutThird},
    {"places.mkv", "-map 0 -map 2 FAST -b:v 2M -c:a aac -b:a 192k", 0, -kAac},
    {"places.ts", "-map 0 -map 2 FAST -b:v 2M -c:a aac -b:a 192k", 0, -kAac},
    // the pictures at the end of what is read of a file are not all that belong there
    {"coding_order.mkv", "-map 0 -c:v libx264 -bf 5 -b_strategy 0", 0, 0},
    {"hidden.webm", "-map 0 -c:v libvpx -b:v 200k -cpu-used 8 -auto-alt-ref 1 -lag-in-frames 16", 0,
     0},
    {"rapid.mkv", "-map 0 -vf fps=300,setpts=N/300/TB -t 12 -c:v mpeg4", 0, 0},
    {"made_up.mp4", "-map 0 -c:v libx264 -bsf:v setts=pts=PTS:dts=DTS-200*(N-2*floor(N/2))", 0, 0},
    {"change.mp4", "-map 0 -vf select='lt(n,75)+not(mod(n,3))' -vsync vfr -c:v libx264", 0, 0,
     true},
    {"change.mkv", "-map 0 -vf select='lt(n,75)+not(mod(n,3))' -vsync vfr -c:v libx264", 0, 0,
     true},
};

/// One of the two; exact where the codec's frames name it.
void expectRate(int bitrate, bool estimated, double expected, double plain, const char *name)
{
    const double rate = std::abs(expected) == 1 ? plain : std::abs(expected);
    const bool isNamed = expected > 1 && std::fmod(expected, 8000) == 0;
    EXPECT_NEAR(bitrate, rate, isNamed ? 0 : rate * (estimated ? 0.15 : 0.02)) << name;
    EXPECT_EQ(estimated, expected < 0) << name;
}

TEST_F(ProbeRates, TellsRatesAndPace)
{
    const std::string font = folder_->write("font.ttf", std::string(20'000'000, 'f'));
    std::vector<std::string> all = {
        "-f",
        "lavfi",
        "-i",
        "testsrc2=s=320x180:r=25:d=12,format=yuv420p",
        "-f",
        "lavfi",
        "-i",
        "anoisesrc=r=48000:a=0.2:d=12,aformat=cl=stereo",
        "-f",
        "lavfi",
        "-i",
        "anullsrc=r=48000:cl=mono:d=6[a];anoisesrc=r=48000:a=0.3:d=6[b];"
        "[a][b]concat=v=0:a=1,aformat=fltp",
        "-i",
        clip("cover.png")};
    for (const Told &told : s_Told) {
        for (const std::string &word : words(told.options))
            all.push_back(word == "FONT" ? font : word);
        all.push_back(clip(told.name));
    }
    runFfmpeg(all);
    for (const Told &told : s_Told)
        if (told.change) folder_->write(told.name, told.change(readFile(clip(told.name))));

    const MediaInfo plain = probe("plain.mp4");
    ASSERT_TRUE(plain.video && plain.audio.size() == 1);
    const auto size = static_cast<double>(std::filesystem::file_size(clip("plain.mp4")));
    EXPECT_NEAR(plain.video->bitrate + plain.audio[0].bitrate, size * 8 / 12, size * 8 / 12 * 0.04);
    for (const Told &told : s_Told) {
        const MediaInfo media = probe(told.name);
        EXPECT_NEAR(media.duration, 12, 0.6) << told.name;
        EXPECT_EQ(media.video && std::ranges::count(media.video->playExceptionNames, "vfr") > 0,
                  told.varies)
            << told.name;
        if (told.video != 0)
            expectRate(media.video.value().bitrate, media.video->bitrateEstimated, told.video,
                       plain.video->bitrate, told.name);
        if (told.audio != 0)
            expectRate(media.audio.at(0).bitrate, media.audio[0].bitrateEstimated, told.audio,
                       plain.audio[0].bitrate, told.name);
    }
}

/// More of it than is counted: the noise goes on for two minutes.
TEST_F(ProbeRates, EstimatesLongSongs)
{
    constexpr const char *kLong =
        "anullsrc=r=48000:cl=mono:d=6[a];anoisesrc=r=48000:a=0.3:d=114[b];"
        "[a][b]concat=v=0:a=1,aformat=fltp";
    runFfmpeg({"-f", "lavfi", "-i", kLong, "-c:a", "aac", "-b:a", "192k", clip("long.aac"), "-q:a",
               "2", "-write_xing", "0", clip("long.mp3")});
    for (const char *name : {"long.aac", "long.mp3"}) {
        const MediaInfo media = probe(name);
        const auto rate = static_cast<double>(std::filesystem::file_size(clip(name))) * 8 / 120;
        EXPECT_NEAR(media.duration, 120, 6) << name;
        expectRate(media.audio.at(0).bitrate, media.audio[0].bitrateEstimated, -rate, 0, name);
    }
}

} // namespace
} // namespace vornak::test

// Decide, transcode, decide again: what a profile has made of a clip, it takes as it is.
#include "tools/decide/decide_files.h"

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <span>
#include <sstream>

namespace vornak::test {
namespace {

using Words = std::vector<std::string>;

struct Clip {
    const char *file;
    const char *picture;  ///< size and rate, or null: music
    const char *sound;    ///< channels and rate, or null: silent
    const char *encoders; ///< that ffmpeg must have
    const char *options;  ///< of ffmpeg, that make the clip
};

constexpr Clip s_Clips[] = {
    // codec, container, size, interlacing, bit depth and frame rate of pictures; sound beside them
    {"plain.mp4", "s=320x240:r=25", "c=stereo:s=48000", "libx264 aac",
     "-c:v libx264 -profile:v main -pix_fmt yuv420p -c:a aac"},
    {"brand.mov", "s=320x240:r=25", "c=stereo:s=48000", "libx264 aac",
     "-c:v libx264 -profile:v main -pix_fmt yuv420p -c:a aac"},
    {"ten-bit.mkv", "s=320x240:r=30", "c=5.1:s=96000", "libx264 flac",
     "-c:v libx264 -profile:v high10 -pix_fmt yuv420p10le -c:a flac"},
    {"interlaced.ts", "s=720x576:r=25", "c=stereo:s=48000", "libx264 mp2",
     "-c:v libx264 -pix_fmt yuv420p -flags +ildct+ilme -x264opts tff=1 -c:a mp2"},
    {"large.mkv", "s=2560x1440:r=25", "c=7.1:s=48000", "libx264 aac",
     "-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac"},
    {"odd-size-444.mkv", "s=321x241:r=24", "c=mono:s=22050", "libx264 pcm_s16le",
     "-c:v libx264 -profile:v high444 -pix_fmt yuv444p -c:a pcm_s16le"},
    {"fast.mp4", "s=640x360:r=60", "c=mono:s=44100", "libx264 aac",
     "-c:v libx264 -pix_fmt yuv420p -c:a aac"},
    {"silent.mp4", "s=320x240:r=25", nullptr, "libx264", "-c:v libx264 -pix_fmt yuv420p"},
    {"silent-old.avi", "s=320x240:r=25", nullptr, "mpeg4", "-c:v mpeg4"},
    {"two-tracks.mkv", "s=320x240:r=25", "c=stereo:s=48000", "libx264 flac libopus",
     "-c:v libx264 -pix_fmt yuv420p -map 0:v -map 1:a -map 1:a -c:a:0 flac -c:a:1 libopus"},
    {"hevc.mp4", "s=320x240:r=25", "c=stereo:s=48000", "libx265 aac",
     "-c:v libx265 -x265-params log-level=error -pix_fmt yuv420p -c:a aac"},
    {"hevc-ten-bit.mkv", "s=320x240:r=25", "c=5.1(side):s=48000", "libx265 ac3",
     "-c:v libx265 -x265-params log-level=error -pix_fmt yuv420p10le -c:a ac3"},
    {"dvd.vob", "s=720x576:r=25", "c=5.1(side):s=48000", "mpeg2video ac3",
     "-f vob -c:v mpeg2video -flags +ildct+ilme -c:a ac3"},
    {"broadcast.ts", "s=1280x720:r=50", "c=stereo:s=48000", "mpeg2video mp2",
     "-c:v mpeg2video -b:v 8M -c:a mp2"},
    {"ntsc.mpg", "s=720x480:r=30000/1001", "c=stereo:s=44100", "mpeg1video mp2",
     "-c:v mpeg1video -c:a mp2"},
    {"old.avi", "s=320x240:r=15", "c=stereo:s=44100", "mpeg4 libmp3lame",
     "-c:v mpeg4 -bf 2 -c:a libmp3lame"},
    {"old.wmv", "s=320x240:r=25", "c=stereo:s=44100", "wmv2 wmav2", "-c:v wmv2 -c:a wmav2"},
    {"old.flv", "s=320x240:r=25", "c=mono:s=22050", "flv libmp3lame", "-c:v flv -c:a libmp3lame"},
    {"camera.mov", "s=320x240:r=25", "c=mono:s=8000", "mjpeg pcm_s16be",
     "-c:v mjpeg -c:a pcm_s16be"},
    {"studio.mov", "s=320x240:r=25", "c=stereo:s=48000", "prores_ks pcm_s24le",
     "-c:v prores_ks -c:a pcm_s24le"},
    {"web.webm", "s=320x240:r=25", "c=stereo:s=48000", "libvpx-vp9 libopus",
     "-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -c:a libopus"},
    {"old-web.webm", "s=320x240:r=25", "c=stereo:s=44100", "libvpx libvorbis",
     "-c:v libvpx -deadline realtime -c:a libvorbis"},
    {"new-web.mkv", "s=320x240:r=25", "c=5.1:s=48000", "libaom-av1 libopus",
     "-c:v libaom-av1 -cpu-used 8 -usage realtime -c:a libopus -mapping_family 1"},
    {"free.ogv", "s=320x240:r=25", "c=mono:s=22050", "libtheora libvorbis",
     "-c:v libtheora -c:a libvorbis"},

    // music
    {"song.mp3", nullptr, "c=stereo:s=44100", "libmp3lame", "-c:a libmp3lame"},
    {"voice.mp3", nullptr, "c=mono:s=16000", "libmp3lame", "-c:a libmp3lame -b:a 32k"},
    {"studio.flac", nullptr, "c=5.1:s=192000", "flac", "-c:a flac -sample_fmt s32"},
    {"song.ogg", nullptr, "c=stereo:s=44100", "libvorbis", "-c:a libvorbis"},
    {"surround.opus", nullptr, "c=5.1:s=48000", "libopus", "-c:a libopus -mapping_family 1"},
    {"song.m4a", nullptr, "c=7.1:s=48000", "aac", "-c:a aac"},
    {"lossless.m4a", nullptr, "c=stereo:s=96000", "alac", "-c:a alac"},
    {"song.wma", nullptr, "c=stereo:s=44100", "wmav2", "-c:a wmav2"},
    {"song.aiff", nullptr, "c=stereo:s=44100", "pcm_s16be", "-c:a pcm_s16be"},
    {"deep.wav", nullptr, "c=stereo:s=96000", "pcm_s24le", "-c:a pcm_s24le"},
    {"narrow.wav", nullptr, "c=mono:s=8000", "pcm_u8", "-c:a pcm_u8"},
    {"song.mka", nullptr, "c=stereo:s=48000", "libmp3lame", "-c:a libmp3lame"},
    {"surround.ac3", nullptr, "c=5.1(side):s=48000", "ac3", "-c:a ac3"},
    {"bare.aac", nullptr, "c=stereo:s=48000", "aac", "-f adts -c:a aac"},
};

constexpr const char *s_Profiles[] = {"desktop-player", "hifi-streamer", "living-room-tv",
                                      "older-tv", "phone"};

Words split(const std::string &text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// Names of the encoders that ffmpeg has.
const std::set<std::string> &encoders()
{
    static const std::set<std::string> names = [] {
        const Words words = split(run({"ffmpeg", "-hide_banner", "-encoders"}).out);
        return std::set<std::string>(words.begin(), words.end());
    }();
    return names;
}

/// All profiles; for the sanitized tool, which takes long, one in turn for every other clip.
std::span<const char *const> profilesFor(const Clip &clip)
{
    if (!VORNAK_SANITIZED) return s_Profiles;
    const auto position =
        static_cast<std::size_t>(std::ranges::find(s_Clips, clip.file, &Clip::file) - s_Clips);
    return std::span(s_Profiles).subspan(position / 2 % std::size(s_Profiles), 1 - position % 2);
}

std::string profilePath(const std::string &name)
{
    return VORNAK_SOURCE_DIR "/examples/profiles/" + name + ".xml";
}

/// What becomes of a file.
tool::FileResult decide(const std::string &profile, const std::string &file)
{
    return tool::decideFile(tool::ProfileSession(profilePath(profile)), {}, file);
}

class ClosedLoop : public testing::TestWithParam<Clip> {
protected:
    void makeClip()
    {
        Words words = {"ffmpeg", "-v", "error"};
        const auto addInput = [&](const std::string &source) {
            words.insert(words.end(), {"-f", "lavfi", "-i", source + ":d=1"});
        };
        const Clip &clip = GetParam();
        if (clip.picture) addInput(std::string("testsrc2=") + clip.picture);
        if (clip.sound) addInput(std::string("aevalsrc=0.3*sin(2000*t):") + clip.sound);
        for (const std::string &word : split(clip.options)) words.push_back(word);
        words.push_back(media_);
        const auto made = run(words);
        ASSERT_EQ(made.status, 0) << made.err;
    }

    TempDir dir_;
    std::string media_ = dir_ / GetParam().file;
};

TEST_P(ClosedLoop, EveryProfileTakesWhatItHasMade)
{
    for (const std::string &encoder : split(GetParam().encoders))
        if (!encoders().contains(encoder)) GTEST_SKIP() << "this ffmpeg has no " << encoder;
    if (profilesFor(GetParam()).empty()) GTEST_SKIP() << "every other clip is enough here";
    makeClip();
    if (HasFatalFailure()) return;

    for (const std::string profile : profilesFor(GetParam())) {
        SCOPED_TRACE(profile);
        const auto before = decide(profile, media_);
        if (const auto *undecided = std::get_if<tool::Undecided>(&before)) {
            EXPECT_EQ(undecided->code, "no-section"); // it plays music alone
            EXPECT_TRUE(GetParam().picture && profile == "hifi-streamer");
            continue;
        }
        const auto outcome = std::get<tool::Decision>(before).outcome;
        EXPECT_NE(outcome, tool::Outcome::Refused);
        const std::string output = dir_ / (profile + ".out");
        const auto made = run({VORNAK_CLI, "transcode", "-p", profilePath(profile), media_, "-o",
                               output, "--verify"});
        EXPECT_EQ(made.status, outcome == tool::Outcome::Kept ? 3 : 0) << made.err;
        ASSERT_EQ(std::filesystem::exists(output), outcome != tool::Outcome::Kept);
        if (outcome == tool::Outcome::Kept) continue;
        const auto after = decide(profile, output);
        ASSERT_TRUE(std::holds_alternative<tool::Decision>(after));
        EXPECT_EQ(std::get<tool::Decision>(after).outcome, tool::Outcome::Kept);
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, ClosedLoop, testing::ValuesIn(s_Clips), [](const auto &clip) {
    std::string name = clip.param.file;
    for (char &c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
});

} // namespace
} // namespace vornak::test

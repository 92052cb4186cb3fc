#include "include/vornak_host.h"
#include "tests/decision/rules.h"

#include "tests/support/capture.h"

#include <gtest/gtest.h>
#include <regex>

namespace vornak::test {
namespace {

/// What a call writes to standard error at a debug level, with the line numbers as "N".
template <class Call>
std::string trace(int level, Call call)
{
    Capture capture(2);
    g_debug_level = level;
    call();
    g_debug_level = 0;
    return std::regex_replace(capture.take(), std::regex(R"(\[Line:\d+\])"), "[Line:N]");
}

constexpr char kAudio[] = "[File:find_music.cpp][Line:N][Func:FindMusicTranscode]:  ";
constexpr char kVideo[] = "[File:find_video.cpp][Line:N][Func:FindVideoTranscode]: ";
constexpr char kWrapper[] = "[File:video_index.cpp][Line:N][Func:getVideoTranscodeIndex2]: ";
constexpr char kFormat[] = "[File:find_format.cpp][Line:N][Func:FindFormatTranscode]: ";

std::string bold(const std::string &line)
{
    return "\033[1;33m" + line + "\n\033[m";
}

std::string ruleLine(int index, const std::string &field, int value)
{
    return kAudio + ("pAudioTable[" + std::to_string(index) + "]." + field + " = ") +
           std::to_string(value) + "\n";
}

struct Traced {
    Format formats[2] = {entry(kMp4), entry(-1)};
    AudioRule audio[5] = {audioRule(kMp3, formats), audioRule(kAac, formats),
                          audioRule(kAac, formats), audioRule(0, formats), audioRule(-1, nullptr)};
    VideoRule video[3] = {videoRule(kH264, audio), videoRule(kH264, audio), videoRule(-1, nullptr)};
};

std::string audioTrace()
{
    std::string text = std::string(kAudio) +
                       "srcACodecId = 86018, srcAProfileId = 1, srcALevel = 4, srcAChannels = 6\n"
                       "srcABitrate = 128000, srcASampleRate = 48000, srcFormatId = 8\n" +
                       ruleLine(0, "aCodecId", kMp3) + ruleLine(1, "aCodecId", kAac) +
                       ruleLine(1, "aProfileId", 0) + ruleLine(1, "aLevel", -3) +
                       ruleLine(1, "maxChannels", 2) + ruleLine(2, "aCodecId", kAac);
    for (const char *field : {"aProfileId", "aLevel", "maxChannels", "minChannels", "maxBitrate",
                              "minBitrate", "maxSampleRate"})
        text += ruleLine(2, field, 0);
    text += ruleLine(2, "minSampleRate", 8000);
    text += std::string(kAudio) + "pAudioIndex = 2\n";
    return text + bold(std::string(kFormat) + "*pFormatIndex=0");
}

TEST(DebugLines, traceTheAudioWalk)
{
    Traced t;
    t.audio[1].aLevel = -3;
    t.audio[1].maxChannels = 2;
    t.audio[2].minSampleRate = 8000;
    AudioInput source;
    source.channels = 6;
    EXPECT_EQ(trace(1, [&] { decideMusic(t.audio, source); }), audioTrace());
    EXPECT_EQ(trace(-1, [&] { decideMusic(t.audio, source); }), audioTrace());
    EXPECT_EQ(trace(0, [&] { decideMusic(t.audio, source); }), "");
    EXPECT_EQ(trace(1, [&] { decideMusic(nullptr); }), "");

    // Written as found, ahead of what is forced; a wildcard ends the walk with its first line.
    EXPECT_EQ(trace(1, [&] { decideMusic(t.audio + 3, source, 0, 1); }),
              std::string(kAudio) +
                  "srcACodecId = 86018, srcAProfileId = 1, srcALevel = 4, srcAChannels = 6\n"
                  "srcABitrate = 128000, srcASampleRate = 48000, srcFormatId = 8\n" +
                  ruleLine(0, "aCodecId", 0) + kAudio + "pAudioIndex = 0\n" +
                  bold(std::string(kFormat) + "*pFormatIndex=0"));
}

TEST(DebugLines, traceTheVideoWalk)
{
    Traced t;
    t.audio[1].aLevel = -3;
    t.audio[1].maxChannels = 2;
    t.audio[2].minSampleRate = 8000;
    t.video[0].playException = 6;
    t.video[1].noTranscode = 1;
    const auto decide = [&](int assignTrack) {
        int video = 0, audio = 0, format = 0;
        getVideoTranscodeIndex(t.video, kH264, 0, 0, 1, 1, 1, kAac, 1, 4, 6, 128000, 48000, kMp4,
                               &video, &audio, &format, nullptr, nullptr, nullptr, 1, 0,
                               assignTrack, 2);
    };
    const std::string exception =
        std::string(kVideo) +
        "srcVCodecFlag=2 match play exception, so we still need to transcode it, i=0\n";
    EXPECT_EQ(
        trace(1, [&] { decide(0); }),
        exception + bold(std::string(kVideo) + "*pVideoIndex=1, assignTrack=0") + audioTrace() +
            bold(std::string(kWrapper) + "ret=0, *pVideoIndex=1, *pAudioIndex=2, *pFormatIndex=0"));
    t.video[0].noTranscode = 1;
    EXPECT_EQ(trace(1, [&] { decide(7); }),
              exception + bold(std::string(kVideo) + "*pVideoIndex=1, assignTrack=7") +
                  audioTrace() + kVideo + "need to transcode, but result is 3, so ret = 3\n" +
                  bold(std::string(kWrapper) +
                       "ret=3, *pVideoIndex=256, *pAudioIndex=2, *pFormatIndex=0"));
    EXPECT_EQ(trace(0, [&] { decide(7); }), "");
}

} // namespace
} // namespace vornak::test

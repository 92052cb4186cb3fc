#include "include/vornak.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

struct Estimate {
    int result = -1;
    std::int64_t size = -5, frames = -5;
    int header = -5;
};

Estimate estimate(const char *container, const char *audio, int duration, int reserved = 0)
{
    TANASCODE_FORMAT_MAPPING_ST format = {};
    format.formatId = container ? 2 : 0;
    format.option = const_cast<char *>(container);
    format.count = 1;
    TRANSCODE_AUDIO_MAPPING_ST rule = {};
    rule.option = const_cast<char *>(audio);
    rule.pFormatTable = &format;
    rule.count = 1;
    Estimate e;
    e.result = guessMusicTranscodeFileLength(&rule, 256, 0, duration, reserved, 2, &e.size,
                                             &e.header, &e.frames);
    return e;
}

constexpr const char *kCd = "-c:a pcm_s16le -ar 44100 -ac 2";
constexpr std::int64_t kLongest = std::int64_t{320000} * INT32_MAX; // frames

TEST(Length, OfPcmOutput)
{
    const struct {
        const char *container, *audio;
        int duration, header;
        std::int64_t frames, size;
    } cases[] = {
        {nullptr, kCd, 300, 44, 13230000, 52920044}, // the default container, WAV
        {"-f aiff", "-c:a pcm_s24be -ar 48000 -ac 2", 60, 54, 2880000, 17280054},
        {"-f wav", "-c:a pcm_s24be -ar 96000 -ac 1", 1, 44, 96000, 288044},
        {"-f   s16le", "-c:a   pcm_s16be -ar   44100 -ac   8", 1, 0, 44100, 705600},
        {"-f s16be", "-ac 1 -ar 48000 -c:a pcm_s24le", 2, 0, 96000, 288000},
        {"-x -f s24le", "-ar 44100x -ac 2x -c:a pcm_s16le_more", 1, 0, 44100, 176400},
        {"-f s24be -f mp3", "-ac 1 -ac 9 -ar 320000 -ar 1 -c:a pcm_s16le -c:a mp3", 1, 0, 320000,
         640000},
        {"-f wav", "-c:a pcm_s16le -ar 44100 -ac x", 9, 44, 396900, 44}, // no digits: 0 channels
        {"-f wav", "-c:a pcm_s16le -ar 44100 -ac 0", 9, 44, 396900, 44},
        {"-f wav", "-c:a pcm_s24le -ar 0320000 -ac 08", INT32_MAX, 44, kLongest,
         kLongest * 24 + 44},
    };
    for (const auto &c : cases) {
        const Estimate e = estimate(c.container, c.audio, c.duration);
        EXPECT_EQ(e.result, 0) << c.audio;
        EXPECT_EQ(e.frames, c.frames) << c.audio;
        EXPECT_EQ(e.size, c.size) << c.audio;
        EXPECT_EQ(e.header, c.header) << c.audio;
    }
}

TEST(Length, OfAnythingElseIsRefused)
{
    const struct {
        const char *container, *audio;
        int duration;
    } cases[] = {
        {"-f wav", kCd, 0},
        {"-f wav", kCd, -1},
        {"-f mp3", kCd, 1},
        {"-f  ", kCd, 1},
        {"-f", kCd, 1},
        {"-f \twav", kCd, 1},
        {"", kCd, 1},
        {"-f WAV", kCd, 1},
        {"-f wav", nullptr, 1},
        {"-f wav", "-c:a libmp3lame -ar 44100 -ac 2", 1},
        {"-f wav", "-c:a  ", 1},
        {"-f wav", "-ar 44100 -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ar 44100", 1},
        {"-f wav", "-c:a pcm_s16le -ac 2 -ar ", 1},
        {"-f wav", "-c:a pcm_s16le -ar 44100 -ac ", 1},
        {"-f wav", "-c:a pcm_s16le -ar x44100 -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ar -44100 -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ar \t44100 -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ar 44099 -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ar 320001 -ac 2", 1},
        {"-f wav", "-c:a pcm_s16le -ar 4294967296044100 -ac 2", 1},     // 44100 in 32 bits
        {"-f wav", "-c:a pcm_s16le -ar 18446744073709595716 -ac 2", 1}, // 44100 in 64 bits
        {"-f wav", "-c:a pcm_s16le -ar 44100 -ac 9", 1},
        {"-f wav", "-c:a pcm_s16le -ar 44100 -ac 4294967298", 1},
    };
    for (const auto &c : cases) {
        const Estimate e = estimate(c.container, c.audio, c.duration);
        EXPECT_EQ(e.result, 1) << c.container << ", " << (c.audio ? c.audio : "(none)");
        EXPECT_EQ(e.size, 0);
        EXPECT_EQ(e.header, 0);
        EXPECT_EQ(e.frames, -5);
    }
}

TEST(Length, ChecksItsTablesAndPointers)
{
    char container[] = "-f wav", audio[] = "-c:a pcm_s16le -ar 44100 -ac 2";
    TANASCODE_FORMAT_MAPPING_ST formats[2] = {};
    formats[0].count = 1;
    formats[1].formatId = 2;
    formats[1].option = container;
    TRANSCODE_AUDIO_MAPPING_ST rules[2] = {};
    rules[0].count = 1;
    rules[1].option = audio;
    rules[1].pFormatTable = formats;
    const auto guess = [&](int audioIndex, int formatIndex, int defaultId) {
        Estimate e;
        e.result = guessMusicTranscodeFileLength(rules, audioIndex, formatIndex, 1, 77, defaultId,
                                                 &e.size, &e.header, &e.frames);
        EXPECT_EQ(e.size, e.result == 0 ? 176444 : 0);
        return e.result;
    };
    EXPECT_EQ(guess(0, 0, 2), 1); // no containers
    EXPECT_EQ(guess(1, 1, 2), 1); // past the rules
    rules[0].count = 2;
    EXPECT_EQ(guess(1, 1, 2), 1); // past the containers
    EXPECT_EQ(guess(1, 0, 0), 1); // no container named, no default
    EXPECT_EQ(guess(1, 0, 4), 1);
    EXPECT_EQ(guess(1, 0, 2), 0);
    formats[0].count = 2;
    EXPECT_EQ(guess(257, -255, 0), 0);

    std::int64_t size = 7, frames = 7;
    int header = 7;
    EXPECT_EQ(guessMusicTranscodeFileLength(rules, 1, 1, 1, 0, 2, nullptr, &header, &frames), 1);
    EXPECT_EQ(guessMusicTranscodeFileLength(rules, 1, 1, 1, 0, 2, &size, nullptr, &frames), 1);
    EXPECT_EQ(guessMusicTranscodeFileLength(rules, 1, 1, 1, 0, 2, &size, &header, nullptr), 1);
    EXPECT_EQ(size + header + frames, 21);
    EXPECT_EQ(guessMusicTranscodeFileLength(nullptr, 1, 1, 1, 0, 2, &size, &header, &frames), 1);
    EXPECT_EQ(size + header, 0);
}

} // namespace
} // namespace vornak::test

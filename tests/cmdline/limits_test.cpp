#include "include/vornak.h"
#include "include/vornak_host.h"
#include "tests/cmdline/constraint_bytes.h"

#include "tests/support/capture.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace vornak::test {
namespace {

using Set = TRANSCODE_CONSTRAINT_ST;

std::unique_ptr<Set> filledSet()
{
    auto set = std::make_unique<Set>();
    std::memset(set.get(), 'z', sizeof *set);
    set->mode = 1;
    set->mask = 0x8000000000000001;
    return set;
}

void expectSlot(Set &expected, int slot, const std::string &text)
{
    expected.mask |= std::uint64_t{1} << slot;
    std::memset(expected.value[slot], 0, sizeof expected.value[slot]);
    std::memcpy(expected.value[slot], text.data(), text.size());
}

class Random {
public:
    int from(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
    int nearZero() { return from(0, 9) == 0 ? extreme() : from(-1, 6); }

private:
    int extreme()
    {
        const int values[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, INT32_MAX};
        return values[from(0, 3)];
    }
    std::mt19937 engine_{77};
};

TEST(Limits, OfAudioAgreeWithAPlainStatement)
{
    Random random;
    for (int round = 0; round < 3000; ++round) {
        TRANSCODE_AUDIO_MAPPING_ST rules[2] = {};
        TRANSCODE_AUDIO_MAPPING_ST &rule = rules[1];
        rules[0].count = 2;
        rule.aCodecId = random.nearZero();
        rule.aProfileId = random.nearZero();
        rule.aLevel = random.nearZero();
        for (int *limit : {&rule.maxChannels, &rule.minChannels, &rule.maxBitrate, &rule.minBitrate,
                           &rule.maxSampleRate, &rule.minSampleRate})
            *limit = random.nearZero();
        int source[6];
        for (int &value : source) value = random.nearZero();

        const auto expected = filledSet();
        std::string lines = "index i = 1\nsrc codecId = " + std::to_string(source[0]) +
                            ", config codecId = " + std::to_string(rule.aCodecId) + "\n";
        const auto outside = [&](bool isOutside, int slot, int limit, const char *name) {
            if (limit < 1 || !isOutside) return;
            const std::string text = std::to_string(limit);
            lines.append("param = ").append(text).append(", ").append(name);
            lines.append(" = ").append(text).append("\n");
            expectSlot(*expected, slot, text);
        };
        outside(source[4] > rule.maxBitrate, 10, rule.maxBitrate, "maxBitrate");
        outside(source[4] < rule.minBitrate, 11, rule.minBitrate, "minBitrate");
        outside(source[3] > rule.maxChannels, 8, rule.maxChannels, "maxChannels");
        outside(source[3] < rule.minChannels, 9, rule.minChannels, "minChannels");
        outside(source[5] > rule.maxSampleRate, 12, rule.maxSampleRate, "maxSampleRate");
        outside(source[5] < rule.minSampleRate, 13, rule.minSampleRate, "minSampleRate");

        const auto set = filledSet();
        Capture err(2);
        const int result =
            genAudioTranscodeParameter(random.from(0, 1) * 256 + 1, rules, source, set.get());
        ASSERT_EQ(err.take(), lines) << "round " << round;
        ASSERT_EQ(result, 0);
        ASSERT_TRUE(bytesOf(*set) == bytesOf(*expected)) << "round " << round;
    }
}

TEST(Limits, OfVideoAgreeWithAPlainStatement)
{
    Random random;
    for (int round = 0; round < 5000; ++round) {
        TRANSCODE_VIDEO_MAPPING_ST rules[2] = {};
        TRANSCODE_VIDEO_MAPPING_ST &rule = rules[1];
        rules[0].count = 2;
        for (int *limit :
             {&rule.maxWidth, &rule.maxHeight, &rule.minWidth, &rule.minHeight, &rule.maxBitrate,
              &rule.minBitrate, &rule.tolerance, &rule.playException})
            *limit = random.nearZero();
        int source[6];
        for (int &value : source) value = random.nearZero();
        const std::int64_t width = source[3], height = source[4], tolerance = rule.tolerance;

        const auto expected = filledSet();
        const auto size = [&](bool inside, int slot, int w, int h) {
            if (w <= 0 || h <= 0) return;
            if (tolerance >= 1)
                inside = std::abs(width - w) <= tolerance && std::abs(height - h) <= tolerance;
            if (!inside) expectSlot(*expected, slot, std::to_string(w) + "x" + std::to_string(h));
        };
        size(width <= rule.maxWidth && height <= rule.maxHeight, 2, rule.maxWidth, rule.maxHeight);
        size(width >= rule.minWidth && height >= rule.minHeight, 3, rule.minWidth, rule.minHeight);
        if (rule.maxBitrate >= 1 && source[5] > rule.maxBitrate)
            expectSlot(*expected, 4, std::to_string(rule.maxBitrate));
        if (rule.minBitrate >= 1 && source[5] < rule.minBitrate)
            expectSlot(*expected, 5, std::to_string(rule.minBitrate));

        const auto set = filledSet();
        Capture err(2);
        const int result = genVideoTranscodeParameter(257, rules, source, set.get());
        ASSERT_EQ(err.take(), "index i = 1\n");
        ASSERT_EQ(result, 0);
        ASSERT_TRUE(bytesOf(*set) == bytesOf(*expected)) << "round " << round;
    }
}

TEST(Limits, AreRenderedAsACommand)
{
    TRANSCODE_AUDIO_MAPPING_ST audio = {};
    audio.count = 1;
    audio.maxChannels = 2;
    audio.maxBitrate = 320000;
    audio.maxSampleRate = 48000;
    TRANSCODE_VIDEO_MAPPING_ST video = {};
    video.count = 1;
    video.maxWidth = 1280;
    video.maxHeight = 720;
    video.maxBitrate = 4000000;
    const int audioSource[6] = {1, 0, 0, 6, 640000, 96000};
    const int videoSource[6] = {28, 0, 0, 1920, 1080, 8000000};
    const auto set = std::make_unique<Set>();
    {
        const Capture err(2);
        genAudioTranscodeParameter(256, &audio, audioSource, set.get());
        genVideoTranscodeParameter(256, &video, videoSource, set.get());
    }
    EXPECT_EQ(set->mask, 0x1514U);
    TRANSCODE_CMD_ST command;
    EXPECT_EQ(getTranscodeCmdByCondition(set.get(), &command), 0);
    EXPECT_STREQ(command.cmd, " -vf scale=1280:720 -b:v 4000000 -ac 2 -b:a 320000 -ar 48000");
}

TEST(Limits, ProfileAndLevelAreOnlyTraced)
{
    TRANSCODE_AUDIO_MAPPING_ST audio = {};
    TRANSCODE_VIDEO_MAPPING_ST video = {};
    audio.count = video.count = 1;
    audio.aProfileId = video.vProfileId = 3;
    audio.aLevel = video.vLevel = 40;
    const auto trace = [&](int debugLevel, int profile, int level) {
        const int source[6] = {1, profile, level, 0, 0, 0};
        const auto set = std::make_unique<Set>();
        g_debug_level = debugLevel;
        Capture err(2);
        genAudioTranscodeParameter(0, &audio, source, set.get());
        genVideoTranscodeParameter(0, &video, source, set.get());
        g_debug_level = 0;
        EXPECT_EQ(set->mask, 0U);
        return err.take();
    };
    const std::string plain = "index i = 0\nsrc codecId = 1, config codecId = 0\nindex i = 0\n";
    EXPECT_EQ(trace(0, 4, 41), plain);
    EXPECT_EQ(trace(1, 3, 40), plain);
    const auto note = [](const std::string &what, const std::string &func) {
        return "\\[File:[a-z_]+\\.(cpp|h)\\]\\[Line:[0-9]+\\]\\[Func:" + func + "\\]: profile " +
               what + " not matched, but not implement\\.\n";
    };
    const std::string a = "genAudioTranscodeParameter", v = "genVideoTranscodeParameter";
    EXPECT_THAT(trace(1, 5, 41),
                testing::MatchesRegex("index i = 0\nsrc codecId = 1, config codecId = 0\n" +
                                      note("id", a) + note("lv", a) + "index i = 0\n" +
                                      note("id", v) + note("lv", v)));
    EXPECT_THAT(trace(-1, 1, 41),
                testing::MatchesRegex("index i = 0\nsrc codecId = 1, config codecId = 0\n" +
                                      note("lv", a) + "index i = 0\n" + note("lv", v)));
}

TEST(Limits, RefusedArgumentsLeaveTheSetAlone)
{
    TRANSCODE_AUDIO_MAPPING_ST audio[2] = {};
    TRANSCODE_VIDEO_MAPPING_ST video[2] = {};
    audio[0].count = video[0].count = 1;
    audio[0].minChannels = video[0].minBitrate = 5;
    const int source[6] = {};
    const auto set = filledSet(), before = filledSet();
    const struct {
        int index;
        bool table, properties, set;
        const char *line;
    } cases[] = {
        {3, false, true, true, "index i = 3\n"},   {-1, true, true, true, "index i = 255\n"},
        {0, true, false, true, "index i = 0\n"},   {256, true, true, false, "index i = 0\n"},
        {257, true, true, true, "index i = 1\n"},  {1, true, true, true, "index i = 1\n"},
        {-255, true, true, true, "index i = 1\n"},
    };
    for (const auto &c : cases) {
        const int *properties = c.properties ? source : nullptr;
        Set *into = c.set ? set.get() : nullptr;
        Capture err(2);
        EXPECT_EQ(genAudioTranscodeParameter(c.index, c.table ? audio : nullptr, properties, into),
                  1);
        EXPECT_EQ(genVideoTranscodeParameter(c.index, c.table ? video : nullptr, properties, into),
                  1);
        EXPECT_EQ(err.take(), std::string(c.line) + c.line);
    }
    EXPECT_TRUE(bytesOf(*set) == bytesOf(*before));
}

} // namespace
} // namespace vornak::test

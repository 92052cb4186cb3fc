#include "include/vornak.h"
#include "include/vornak_host.h"
#include "tests/cmdline/constraint_bytes.h"

#include "tests/support/capture.h"

#include <climits>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

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

/// Of a source outside, each limit by its slot.
using Recorded = std::vector<std::pair<int, const char *>>;

/// What a call leaves in a set that holds something: the marks and texts of those, no byte else.
template <class Rule, class Generate>
void expectRecorded(Generate generate, const Rule *rules, const int (&source)[6],
                    const Recorded &recorded, const std::string &lines)
{
    const auto expected = filledSet(), set = filledSet();
    for (const auto &[slot, text] : recorded) expectSlot(*expected, slot, text);
    for (const int index : {1, 257}) {
        Capture err(2);
        EXPECT_EQ(generate(index, rules, source, set.get()), 0);
        EXPECT_EQ(err.take(), "index i = 1\n" + lines);
        EXPECT_TRUE(bytesOf(*set) == bytesOf(*expected)) << lines;
    }
}

TEST(Limits, OfAudioAreRecordedWhereTheSourceLiesOutside)
{
    TRANSCODE_AUDIO_MAPPING_ST rules[2] = {};
    rules[0].count = 2;
    rules[1] = {7, 0, 0, 6, 320000, 48000, 2, 64000, 44100, nullptr, 0, 2, nullptr};
    const struct {
        int source[6];
        Recorded recorded;
        std::string lines;
    } cases[] = {
        {{3, 0, 0, 6, 320000, 48000}, {}, ""},
        {{3, 0, 0, 2, 64000, 44100}, {}, ""},
        {{3, 0, 0, 7, 320001, 48001},
         {{8, "6"}, {10, "320000"}, {12, "48000"}},
         "param = 320000, maxBitrate = 320000\nparam = 6, maxChannels = 6\n"
         "param = 48000, maxSampleRate = 48000\n"},
        {{3, 0, 0, 1, 63999, INT_MIN},
         {{9, "2"}, {11, "64000"}, {13, "44100"}},
         "param = 64000, minBitrate = 64000\nparam = 2, minChannels = 2\n"
         "param = 44100, minSampleRate = 44100\n"},
    };
    for (const auto &c : cases)
        expectRecorded(genAudioTranscodeParameter, rules, c.source, c.recorded,
                       "src codecId = 3, config codecId = 7\n" + c.lines);

    // limits that no source keeps show the order
    rules[1] = {7, 0, 0, 6, 320000, 48000, 8, 400000, 96000, nullptr, 0, 2, nullptr};
    expectRecorded(
        genAudioTranscodeParameter, rules, {3, 0, 0, 7, 360000, 64000},
        {{8, "6"}, {9, "8"}, {10, "320000"}, {11, "400000"}, {12, "48000"}, {13, "96000"}},
        "src codecId = 3, config codecId = 7\n"
        "param = 320000, maxBitrate = 320000\nparam = 400000, minBitrate = 400000\n"
        "param = 6, maxChannels = 6\nparam = 8, minChannels = 8\n"
        "param = 48000, maxSampleRate = 48000\nparam = 96000, minSampleRate = 96000\n");
}

TEST(Limits, OfVideoAreRecordedWhereTheSourceLiesOutside)
{
    TRANSCODE_VIDEO_MAPPING_ST rules[2] = {};
    rules[0].count = 2;
    rules[1] = {7, 0, 0, 1920, 1080, 8000000, 320, 240, 100000, 0, 0, 0, 0, nullptr, 0, 2, nullptr};
    const struct {
        int source[6];
        Recorded recorded;
    } cases[] = {
        {{3, 0, 0, 1920, 1080, 8000000}, {}},
        {{3, 0, 0, 320, 240, 100000}, {}},
        {{3, 0, 0, 1920, 1081, 8000001}, {{2, "1920x1080"}, {4, "8000000"}}},
        {{3, 0, 0, 319, 240, 99999}, {{3, "320x240"}, {5, "100000"}}},
    };
    for (const auto &c : cases)
        expectRecorded(genVideoTranscodeParameter, rules, c.source, c.recorded, "");
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

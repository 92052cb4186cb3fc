#include "include/vornak.h"
#include "include/vornak_host.h"
#include "tests/cmdline/scripted_registry.h"

#include "base/fixed_text.h"

#include <cstring>
#include <gtest/gtest.h>

namespace vornak::test {
namespace {

constexpr const char *kUntouched = "untouched";

/// Two video rules of two audio rules of three containers each; the texts tell them apart.
struct Rules {
    char aac[32] = "-c:a aac", pcm[48] = "-c:a pcm_s16le -ar 44100 -ac 2",
         mpeg[32] = "-c:v mpeg2video";
    char ts[16] = "-f mpegts", mp4[16] = "-f mp4", mime[16] = "video/mp4", pn[16] = "AVC_MP4";
    TANASCODE_FORMAT_MAPPING_ST formats[4] = {
        {0, nullptr, nullptr, nullptr, 0, 0, 3},
        {8 | 9 << 16, mime, pn, mp4, 0, 0, 3},
        {11, nullptr, nullptr, ts, 0, 0, 3},
        {-1, nullptr, nullptr, nullptr, 0, 0, 0},
    };
    TRANSCODE_AUDIO_MAPPING_ST audio[4] = {};
    TRANSCODE_VIDEO_MAPPING_ST video[3] = {};

    Rules()
    {
        for (auto &rule : audio) rule.count = 3;
        for (auto &rule : video) rule.count = 2;
        audio[0].aCodecId = 86018;
        audio[0].aProfileId = 3;
        audio[0].option = aac;
        audio[1].aCodecId = 65536;
        audio[1].option = pcm;
        audio[0].pFormatTable = audio[1].pFormatTable = formats;
        audio[3].aCodecId = -1; // position 2 is a rule without containers
        video[0].vCodecId = 2;
        video[0].option = mpeg;
        video[0].pAudioTable = audio;
        video[0].frame = 25;
        video[0].vaTranscode = -1;
        video[1].vCodecId = 0; // any codec, no audio rules
        video[1].frame = 30;
    }
};

class OptionText : public testing::Test {
protected:
    OptionText()
    {
        g_registry = {};
        g_registry.codecs = {
            {2, "CODEC_ID_mpeg2"}, {86018, "CODEC_ID_aac"}, {65536, "123456789pcm"}, {1, "short"}};
        g_registry.profiles = {{{86018, 3}, "lc"}, {{2, 1}, "main"}};
        g_registry.containers = {{2, {"FORMAT_wav", {}}},
                                 {11, {"FORMAT_mpegts", ""}},
                                 {18, {"FORMAT_tsraw", {}}},
                                 {8 | 9 << 16, {"FORMAT_mp4", "BRAND_3gpp"}},
                                 {8 | 12 << 16, {"FORMAT_mp4", "BRAND_new"}}};
        std::memset(option, 'o', sizeof option);
        resetTag();
    }
    ~OptionText() override { EXPECT_TRUE(g_registry.clearedBuffers); }

    void resetTag() { copyCut(tag, sizeof tag, kUntouched); }

    Rules rules;
    char option[VORNAK_OPTION_TEXT_SIZE];
    char tag[VORNAK_TAG_SIZE];
};

TEST_F(OptionText, OfMusic)
{
    const struct {
        int audioIndex, formatIndex, defaultId, result;
        std::int64_t frames;
        const char *option, *tag;
    } cases[] = {
        {257, 0, 2, 0, 13230000,
         "-f wav -write_bext 1 -num_frames 13230000 -c:a pcm_s16le -ar 44100 -ac 2", "pcm_@.wav"},
        {0, 0, 2, 0, 0, "-f wav -write_bext 1 -c:a copy", "aac_lc.wav"},
        {1, 0, 2, 0, 1, "-f wav -write_bext 1 -num_frames 1 -c:a copy", "pcm_@.wav"},
        {256, 257, 0, 0, -1, "-f mp4 -c:a aac", "aac_lc.mp4-3gpp"},
        {512, 2, 0, 0, INT64_MAX, "-f mpegts -num_frames 9223372036854775807 -c:a aac",
         "aac_lc.mpegts"},
        {-256, 2, 9, 0, 0, "-f mpegts -c:a copy", "aac_lc.mpegts"}, // negative: no transcode flag
        {0, 0, 18, 0, 0, "-f mpegts -c:a copy", "aac_lc.tsraw"},
        {0, 0, 0, 1, 0, "", kUntouched},
        {0, 0, 4, 1, 0, "", kUntouched},
        {0, 0, -1, 1, 0, "", kUntouched},
        {3, 0, 2, 1, 0, "", kUntouched},               // past the rules
        {2, 0, 2, 1, 0, "", kUntouched},               // no containers
        {-1, 0, 2, 1, 0, "", kUntouched},              // position 255
        {0, 3, 2, 1, 0, "", kUntouched},               // past the containers
        {0, 0, 1, 1, 0, "-f mp3 -c:a copy", "aac_lc"}, // the registry can't name the container
    };
    for (const auto &c : cases) {
        resetTag();
        EXPECT_EQ(getMusicTranscodeParams2(rules.audio, c.audioIndex, c.formatIndex, option, tag,
                                           c.defaultId, c.frames),
                  c.result);
        EXPECT_STREQ(option, c.option);
        EXPECT_STREQ(tag, c.tag) << c.option;
    }
}

TEST_F(OptionText, OfVideo)
{
    rules.video[0].vProfileId = 1;
    const struct {
        int video, audio, format, force, defaultId, result;
        const char *option, *tag;
    } cases[] = {
        {256, 0, 0, 0, 11, 0, "-f mpegts -c:v mpeg2video -c:a copy", "mpeg2_main_aac_lc.mpegts"},
        {0, 256, 2, 0, 0, 0, "-f mpegts -c:v copy -c:a aac", "mpeg2_main_aac_lc.mpegts"},
        {0, 1, 1, 1, 0, 0, "-f mp4 -c:v mpeg2video -c:a copy", "mpeg2_main_pcm_@.mp4.3GP"},
        {257, 0, 0, 0, 11, 1, "", kUntouched}, // no audio rules
        {2, 0, 0, 0, 11, 1, "", kUntouched},
        {0, 3, 0, 0, 11, 1, "", kUntouched},
        {0, 2, 0, 0, 11, 1, "", kUntouched},
        {0, 0, 3, 0, 11, 1, "", kUntouched},
        {0, 0, 0, 0, 0, 1, "", kUntouched},
    };
    for (const auto &c : cases) {
        resetTag();
        EXPECT_EQ(getVideoTranscodeParams2(rules.video, c.video, c.audio, c.format, option, tag,
                                           c.force, c.defaultId),
                  c.result);
        EXPECT_STREQ(option, c.option);
        EXPECT_STREQ(tag, c.tag) << c.option;
    }
    // A rule for any codec has nothing to transcode to, unless its options are forced.
    rules.video[1].pAudioTable = rules.audio;
    rules.audio[1].aCodecId = 0;
    EXPECT_EQ(getVideoTranscodeParams(rules.video, 257, 257, 1, option, nullptr, 0), 0);
    EXPECT_STREQ(option, "-f mp4 -c:v copy -c:a copy");
    EXPECT_EQ(getVideoTranscodeParams(rules.video, 1, 257, 1, option, nullptr, 1), 0);
    EXPECT_STREQ(option, "-f mp4  -c:a copy");
    EXPECT_EQ(getVideoTranscodeParams(rules.video, 0, 0, 0, option, nullptr, 0), 1);
    EXPECT_STREQ(option, "");
    EXPECT_EQ(getMusicTranscodeParams(rules.audio, 0, 0, option, nullptr), 1);
}

TEST_F(OptionText, WithoutTextsOfTheProfileKeepsItsBlanks)
{
    rules.formats[1].option = nullptr;
    rules.audio[0].option = nullptr;
    EXPECT_EQ(getMusicTranscodeParams(rules.audio, 256, 1, option, nullptr), 0);
    EXPECT_STREQ(option, " ");
    EXPECT_EQ(getVideoTranscodeParams(rules.video, 0, 256, 1, option, nullptr, 0), 0);
    EXPECT_STREQ(option, " -c:v copy ");
    EXPECT_EQ(g_registry.calls, 0);
}

TEST_F(OptionText, FillsItsBufferToTheLastByte)
{
    // Option text that leaves the rest of the buffer exactly filled, and one that is too long.
    std::string text(VORNAK_OPTION_TEXT_SIZE - 1 - std::strlen("-f mp4 "), 'a');
    rules.audio[0].option = text.data();
    EXPECT_EQ(getMusicTranscodeParams(rules.audio, 256, 1, option, nullptr), 0);
    EXPECT_EQ(option, "-f mp4 " + text);
    text.resize(text.size() - std::strlen("-c:v copy "));
    EXPECT_EQ(getVideoTranscodeParams(rules.video, 0, 256, 1, option, nullptr, 0), 0);
    EXPECT_EQ(option, "-f mp4 -c:v copy " + text);
    text += 'a';
    rules.audio[0].option = text.data();
    EXPECT_EQ(getVideoTranscodeParams(rules.video, 0, 256, 1, option, tag, 0), 1);
    EXPECT_STREQ(option, "");
    text.resize(VORNAK_OPTION_TEXT_SIZE, 'a');
    rules.audio[0].option = text.data();
    EXPECT_EQ(getMusicTranscodeParams2(rules.audio, 256, 1, option, tag, 0, 1), 1);
    EXPECT_STREQ(option, "");
    EXPECT_STREQ(tag, kUntouched);
}

TEST_F(OptionText, RefusesNullArguments)
{
    EXPECT_EQ(getMusicTranscodeParams2(rules.audio, 0, 0, nullptr, tag, 2, 0), 1);
    EXPECT_EQ(getMusicTranscodeParams2(nullptr, 0, 0, option, tag, 2, 0), 1);
    EXPECT_STREQ(option, "");
    option[0] = 'o';
    EXPECT_EQ(getVideoTranscodeParams2(rules.video, 0, 0, 0, nullptr, tag, 0, 2), 1);
    EXPECT_EQ(getVideoTranscodeParams2(nullptr, 0, 0, 0, option, tag, 0, 2), 1);
    EXPECT_STREQ(option, "");
}

TEST_F(OptionText, TagEndsWhereTheRegistryFails)
{
    rules.video[0].vProfileId = 1;
    const ScriptedRegistry whole = g_registry;
    const struct {
        void (*forget)(ScriptedRegistry &);
        const char *tag;
    } cases[] = {
        {[](ScriptedRegistry &r) { r.containers.clear(); }, "mpeg2_main_aac_lc"},
        {[](ScriptedRegistry &r) {
             r.profiles.erase({86018, 3});
         },
         "mpeg2_main_aac"},
        {[](ScriptedRegistry &r) { r.codecs.erase(86018); }, "mpeg2_main"},
        {[](ScriptedRegistry &r) {
             r.profiles.erase({2, 1});
         },
         "mpeg2"},
        {[](ScriptedRegistry &r) { r.codecs.erase(2); }, kUntouched}, // never begun
    };
    for (const auto &c : cases) {
        resetTag();
        g_registry = whole;
        c.forget(g_registry);
        EXPECT_EQ(getVideoTranscodeParams2(rules.video, 0, 0, 0, option, tag, 0, 11), 1);
        EXPECT_STREQ(option, "-f mpegts -c:v copy -c:a copy");
        EXPECT_STREQ(tag, c.tag);
    }
}

TEST_F(OptionText, TagTakesRegistryTextsOfAnyLength)
{
    const std::string full(VORNAK_NAME_SIZE, 'n'); // without a NUL
    const struct {
        std::string codec, profile, container, subtype, music, video;
    } cases[] = {
        {"", "", "", "", "_.", "_@__."},
        {"12345678", "p", "123456", "12345", "_p.-", "_@__p.."},
        {"123456789", "p", "1234567", "123456", "_p.-", "_@__p.."},
        {"123456789c", "p", "1234567f", "123456s", "c_p.f-s", "c_@_c_p.f.s"},
        {full, full, full, full,
         full.substr(9) + "_" + full + "." + full.substr(7) + "-" + full.substr(6),
         full.substr(9) + "_@_" + full.substr(9) + "_" + full + "." + full.substr(7) + "." +
             full.substr(6)},
    };
    constexpr int kNoBrand = 8 | 12 << 16;
    rules.formats[1].formatId = kNoBrand;
    for (const auto &c : cases) {
        g_registry.codecs[86018] = g_registry.codecs[2] = c.codec;
        g_registry.profiles[{86018, 3}] = c.profile;
        g_registry.containers[kNoBrand] = {c.container, c.subtype};
        EXPECT_EQ(getMusicTranscodeParams(rules.audio, 0, 1, option, tag), 0);
        EXPECT_EQ(tag, c.music);
        EXPECT_EQ(getVideoTranscodeParams(rules.video, 0, 0, 1, option, tag, 0), 0);
        EXPECT_EQ(tag, c.video);
    }
}

TEST_F(OptionText, VideoTagNamesTheBrandShortly)
{
    const char *const brands[] = {"own",  "M4A", "M4V", "MP4", "MOV", "MSNV", "ISOM",
                                  "MJP2", "3G2", "3GP", "MP4", "MOV", "own"};
    for (int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, -1}) {
        const int id = static_cast<int>(static_cast<unsigned>(number) << 16 | 8);
        g_registry.containers[id] = {"FORMAT_mp4", "BRAND_own"};
        rules.formats[1].formatId = id;
        EXPECT_EQ(getVideoTranscodeParams(rules.video, 0, 0, 1, option, tag, 0), 0);
        EXPECT_EQ(tag, std::string("mpeg2_@_aac_lc.mp4.") + (number < 0 ? "own" : brands[number]));
    }
}

TEST_F(OptionText, DefaultContainersAreReadWhereTheHostCanChangeThem)
{
    std::string rows;
    for (const auto &[id, text] : s_DefaultFormatParams) {
        rows += std::to_string(id) + (text ? std::string(" ") + text + ", " : "");
        EXPECT_EQ(getMusicTranscodeParams2(rules.audio, 0, 0, option, nullptr, id, 0), !text);
        EXPECT_EQ(option, text ? text + std::string(" -c:a copy") : "");
    }
    EXPECT_EQ(rows, "1 -f mp3, 2 -f wav -write_bext 1, 3 -f flac, 5 -f ogg, 6 -f ac3, 7 -f asf, "
                    "8 -f mp4, 9 -f avi, 10 -f mpeg, 11 -f mpegts, 12 -f mkvtimestamp_v2, "
                    "13 -f flv, 14 -f aiff, 15 -f au, 16 -f adts, 17 -f mpeg2video, "
                    "18 -f mpegts, 19 -f mpeg2video, 20 -f mpegts, 21 -f rm, -1");

    DEFAULT_FORMAT_PARAM_ST &row = s_DefaultFormatParams[2];
    const DEFAULT_FORMAT_PARAM_ST kept = row;
    row.option = nullptr;
    EXPECT_EQ(getMusicTranscodeParams2(rules.audio, 0, 0, option, nullptr, 3, 0), 1);
    row.option = "-f own";
    EXPECT_EQ(getMusicTranscodeParams2(rules.audio, 0, 0, option, nullptr, 3, 0), 0);
    EXPECT_STREQ(option, "-f own -c:a copy");
    row = kept;
}

TEST_F(OptionText, FactsOfTheChosenRules)
{
    char *mime = option, *pn = tag;
    EXPECT_EQ(getVideoTranscodeDLNAAttr(rules.video, 256, 1, 257, &mime, &pn), 0);
    EXPECT_EQ(mime, rules.mime);
    EXPECT_EQ(pn, rules.pn);
    EXPECT_EQ(getVideoTranscodeDLNAAttr(rules.video, 256, 1, 2, &mime, &pn), 0);
    EXPECT_EQ(mime, nullptr);
    EXPECT_EQ(pn, nullptr);

    char *unwritten = option;
    const auto refuses = [&](const TRANSCODE_VIDEO_MAPPING_ST *table, int video, int audio,
                             int format, char **mimeOut, char **pnOut) {
        return getVideoTranscodeDLNAAttr(table, video, audio, format, mimeOut, pnOut) == 1 &&
               (video != 0 || getMusicTranscodeDLNAAttr(table ? rules.audio : nullptr, audio,
                                                        format, mimeOut, pnOut) == 1) &&
               unwritten == option;
    };
    EXPECT_TRUE(refuses(nullptr, 0, 0, 0, &unwritten, &unwritten));
    EXPECT_TRUE(refuses(rules.video, 0, 0, 0, nullptr, &unwritten));
    EXPECT_TRUE(refuses(rules.video, 0, 0, 0, &unwritten, nullptr));
    EXPECT_TRUE(refuses(rules.video, 0, 3, 0, &unwritten, &unwritten));
    EXPECT_TRUE(refuses(rules.video, 0, 2, 0, &unwritten, &unwritten));
    EXPECT_TRUE(refuses(rules.video, 0, 0, 3, &unwritten, &unwritten));
    EXPECT_TRUE(refuses(rules.video, 1, 0, 0, &unwritten, &unwritten));
    EXPECT_TRUE(refuses(rules.video, 2, 0, 0, &unwritten, &unwritten));

    const struct {
        bool table;
        int index, frame, hardware;
    } cases[] = {{true, 0, 25, 1}, {true, 256, 25, 1}, {true, 1, 30, 0},    {true, 257, 30, 0},
                 {true, 2, 0, 0},  {true, -1, 0, 0},   {true, -256, 25, 1}, {false, 0, 0, 0}};
    for (const auto &c : cases) {
        EXPECT_EQ(getVideoTranscodeFrame(c.table ? rules.video : nullptr, c.index), c.frame);
        EXPECT_EQ(isVideoSupportVATranscode(c.table ? rules.video : nullptr, c.index), c.hardware);
    }
}

TEST_F(OptionText, OptionsOfTheRulesStayWrittenUpToTheFailingStep)
{
    const struct {
        int video, audio, format, result, written;
    } cases[] = {
        {0, 0, 1, 0, 3}, {256, 257, 258, 0, 3}, {0, 0, 3, 1, 2}, {0, 2, 0, 1, 2},
        {0, 3, 0, 1, 1}, {1, 0, 0, 1, 1},       {2, 0, 0, 1, 0},
    };
    for (const auto &c : cases) {
        char *texts[3] = {tag, tag, tag};
        EXPECT_EQ(getVideoTranscodeOptions(rules.video, c.video, c.audio, c.format, &texts[0],
                                           &texts[1], &texts[2]),
                  c.result);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(texts[i] != tag, i < c.written) << i;
        EXPECT_EQ(getVideoTranscodeOptions(rules.video, c.video, c.audio, c.format, nullptr,
                                           nullptr, nullptr),
                  c.result);
    }
    char *texts[3];
    getVideoTranscodeOptions(rules.video, 0, 1, 2, &texts[0], &texts[1], &texts[2]);
    EXPECT_EQ(texts[0], rules.mpeg);
    EXPECT_EQ(texts[1], rules.pcm);
    EXPECT_EQ(texts[2], rules.ts);
    EXPECT_EQ(getVideoTranscodeOptions(nullptr, 0, 0, 0, &texts[0], &texts[1], &texts[2]), 1);
    EXPECT_EQ(texts[0], rules.mpeg);
}

} // namespace
} // namespace vornak::test

#include "tests/decision/rules.h"

#include <climits>
#include <gtest/gtest.h>

namespace vornak::test {
namespace {

using Rule = VideoRule;

/// A table whose second rule is for H.264 and whose audio takes everything in MP4.
struct Tables {
    Format formats[4] = {entry(kTransportStream), entry(kMp4), entry(kMp3File), entry(-1)};
    AudioRule audio[2] = {audioRule(0, formats), audioRule(-1, nullptr)};
    Rule video[3] = {videoRule(2, audio), videoRule(kH264, audio), videoRule(-1, nullptr)};
};

TEST(VideoDecision, comparesEachLimit)
{
    using V = VideoInput;
    const struct {
        const char *what;
        bool fits;
        void (*change)(Rule &, V &);
    } cases[] = {
        {"profile within", true, [](Rule &r, V &) { r.vProfileId = 6; }},
        {"profile outside", false, [](Rule &r, V &) { r.vProfileId = 5; }},
        {"profile unknown", true, [](Rule &r, V &v) { r.vProfileId = 5, v.profileId = 0; }},
        {"level at", true, [](Rule &r, V &) { r.vLevel = 41; }},
        {"level above", false, [](Rule &r, V &) { r.vLevel = 40; }},
        {"maximum", true, [](Rule &r, V &) { r.maxWidth = 1920, r.maxHeight = 1080; }},
        {"below it", true, [](Rule &r, V &) { r.maxWidth = 1921, r.maxHeight = 1081; }},
        {"too wide", false, [](Rule &r, V &) { r.maxWidth = 1919, r.maxHeight = 1080; }},
        {"too high", false, [](Rule &r, V &) { r.maxWidth = 1920, r.maxHeight = 1079; }},
        {"half a pair", true, [](Rule &r, V &) { r.maxWidth = 640; }},
        {"the other half", true, [](Rule &r, V &) { r.maxHeight = 480, r.maxWidth = -1; }},
        {"close enough", true,
         [](Rule &r, V &) { r.maxWidth = 1928, r.maxHeight = 1072, r.tolerance = 8; }},
        {"not close enough", false,
         [](Rule &r, V &) { r.maxWidth = 1920, r.maxHeight = 1071, r.tolerance = 8; }},
        {"narrower is not close", false,
         [](Rule &r, V &) { r.maxWidth = 1929, r.maxHeight = 1080, r.tolerance = 8; }},
        {"lower is not close", false,
         [](Rule &r, V &) { r.maxWidth = 1920, r.maxHeight = 1082, r.tolerance = 1; }},
        {"distances don't wrap", false,
         [](Rule &r, V &v) {
             r.maxWidth = r.maxHeight = INT_MAX, r.tolerance = 8, v.width = v.height = INT_MIN;
         }},
        {"a negative tolerance is none", true,
         [](Rule &r, V &) { r.maxWidth = 1929, r.maxHeight = 1089, r.tolerance = -8; }},
        {"minimum", true, [](Rule &r, V &) { r.minWidth = 1920, r.minHeight = 1080; }},
        {"too narrow", false, [](Rule &r, V &) { r.minWidth = 1921, r.minHeight = 1; }},
        {"too low", false, [](Rule &r, V &) { r.minWidth = 1, r.minHeight = 1081; }},
        {"half a minimum", true, [](Rule &r, V &) { r.minHeight = 1081; }},
        {"larger is not close", false,
         [](Rule &r, V &) { r.minWidth = 1280, r.minHeight = 720, r.tolerance = 8; }},
        {"bit rate at", true, [](Rule &r, V &) { r.maxBitrate = r.minBitrate = 8000000; }},
        {"bit rate above", false, [](Rule &r, V &) { r.maxBitrate = 7999999; }},
        {"bit rate below", false, [](Rule &r, V &) { r.minBitrate = 8000001; }},
        {"another codec", false, [](Rule &r, V &) { r.vCodecId = 13; }},
        {"any codec, limits unread", true, [](Rule &r, V &) { r.vCodecId = 0, r.vLevel = 10; }},
        {"an exception", false, [](Rule &r, V &v) { r.playException = 6, v.flag = 4; }},
        {"partly covered", true, [](Rule &r, V &v) { r.playException = 4, v.flag = 6; }},
        {"not covered", true, [](Rule &, V &v) { v.flag = 4; }},
        {"no exception", true, [](Rule &r, V &) { r.playException = 4; }},
        {"any codec, exceptions unread", true,
         [](Rule &r, V &v) { r.vCodecId = 0, r.playException = 4, v.flag = 4; }},
    };
    for (const auto &c : cases) {
        Tables tables;
        V source;
        c.change(tables.video[1], source);
        EXPECT_EQ(decideVideo(tables.video, source).video, c.fits ? 1 : 256) << c.what;
    }
}

TEST(VideoDecision, keepsAndTranscodes)
{
    char mime[] = "video/mpeg", pn[] = "AVC_TS";
    Format formats[] = {entry(kTransportStream), entry(kMp4), entry(-1)};
    formats[0].mime = mime;
    formats[0].pn = pn;
    AudioRule audio[] = {takingOnly(AudioInput{}, formats), audioRule(-1, nullptr)};
    Rule table[] = {takingOnly(VideoInput{}, audio), videoRule(-1, nullptr)};

    VideoInput kept, surround, large, forced, preferred;
    surround.audio.codecId = kAc3;
    surround.audio.channels = 6;
    surround.audio.formatId = kMatroska;
    VideoInput assigned = surround;
    assigned.assign = 1;
    large.width = 3840;
    VideoInput unmatched = large, oddMatch = large;
    unmatched.match = 0;
    oddMatch.match = 2;
    forced.force = 1;
    preferred.prefer = kTransportStream;

    const struct {
        const char *what;
        VideoInput source;
        int result, video, audio, format, dst;
    } cases[] = {
        {"kept", kept, 1, 0, 0, 1, kMp4},
        {"audio", surround, 0, 0, 256, 0, kTransportStream},
        {"audio, and an assigned track", assigned, 0, 256, 256, 0, kTransportStream},
        {"video", large, 0, 256, 0, 0, kTransportStream},
        {"video not matched", unmatched, 1, 0, 0, 1, kMp4},
        {"only 1 matches", oddMatch, 1, 0, 0, 1, kMp4},
        {"forced", forced, 0, 256, 256, 256, kTransportStream},
        {"preferred", preferred, 1, 0, 0, 0, kTransportStream},
    };
    for (const auto &c : cases) {
        const Outcome o = decideVideo(table, c.source);
        const bool first = c.format != 1;
        EXPECT_EQ(o, (Outcome{c.result, c.video, c.audio, c.format, c.dst, kUntouched,
                              first ? mime : nullptr, first ? pn : nullptr}))
            << c.what;
    }

    table[0].noTranscode = 1; // kept, or nothing
    EXPECT_EQ(decideVideo(table, kept).result, 1);
    EXPECT_EQ(decideVideo(table, surround),
              (Outcome{3, 0, 256, 0, kMatroska, kUntouched, nullptr, nullptr}));
    EXPECT_EQ(decideVideo(table, large).video, 256);
    EXPECT_EQ(decideVideo(table, large).result, 3);
    formats[0].noTranscode = 1;
    EXPECT_EQ(decideVideo(table, preferred).result, 1);
    table[0].noTranscode = 2; // only 1 counts; the container's own flag does still
    EXPECT_EQ(decideVideo(table, forced).result, 3);
    EXPECT_EQ(decideVideo(table, forced).dst, kTransportStream);
}

TEST(VideoDecision, foldsMpegStreams)
{
    const struct {
        int source, output;
    } cases[] = {{16, 16}, {17, 10}, {18, 11}, {19, 10}, {20, 11}, {21, 21}, {1 << 16 | 19, 19}};
    for (const auto &c : cases) {
        Format formats[] = {entry(c.output), entry(0), entry(-1)};
        AudioRule audio[] = {audioRule(0, formats), audioRule(-1, nullptr)};
        Rule table[] = {videoRule(0, audio), videoRule(-1, nullptr)};
        VideoInput source;
        source.audio.formatId = c.source;
        EXPECT_EQ(decideVideo(table, source).format, 0) << c.source;
        char mime[] = "mime", pn[] = "pn";
        formats[0].mime = mime;
        formats[0].pn = pn;
        formats[0].formatId = 0; // keeps the source's container, folded
        EXPECT_EQ(decideVideo(table, source).dst, c.source >> 16 ? c.source : c.output);

        table[0] = takingOnly(VideoInput{}, audio);
        audio[0] = takingOnly(AudioInput{}, formats);
        Outcome o; // The step itself takes the id as it is.
        o.result = FindVideoTranscode(table, kH264, 2, 41, 1920, 1080, 8000000, kAac, 1, 4, 2,
                                      128000, 48000, c.source, &o.video, &o.audio, &o.format,
                                      &o.mime, &o.pn, &o.dst, 0, 1, 0, 0, 0);
        EXPECT_EQ(o, (Outcome{0, 0, 0, 0, c.source, kUntouched, mime, pn}));
    }
}

TEST(VideoDecision, reportsMissingTables)
{
    EXPECT_EQ(decideVideo(nullptr), Outcome{1});

    Rule noAudio[] = {videoRule(kH264, nullptr), videoRule(-1, nullptr)};
    Outcome expected{1};
    expected.video = 0;
    EXPECT_EQ(decideVideo(noAudio), expected);
    expected.video = 256;
    EXPECT_EQ(decideVideo(noAudio + 1), expected);
    VideoInput unmatched;
    unmatched.match = 0;
    EXPECT_EQ(decideVideo(noAudio + 1, unmatched), expected);

    Tables tables;
    tables.video[1] = takingOnly(VideoInput{}, tables.audio);
    tables.audio[0] = takingOnly(AudioInput{}, tables.formats);
    int video = kUntouched, audio = kUntouched, format = kUntouched;
    const auto decide = [&](int *videoOut, int *audioOut, int *formatOut) {
        return getVideoTranscodeIndex(tables.video, kH264, 2, 41, 1920, 1080, 8000000, kAac, 1, 4,
                                      2, 128000, 48000, kMp4, videoOut, audioOut, formatOut,
                                      nullptr, nullptr, nullptr, 1, 0, 0, 0);
    };
    EXPECT_EQ(decide(nullptr, &audio, &format), 1);
    EXPECT_EQ(decide(&video, nullptr, &format), 1);
    EXPECT_EQ(decide(&video, &audio, nullptr), 1);
    for (const int index : {video, audio, format}) EXPECT_EQ(index, kUntouched);
    EXPECT_EQ(decide(&video, &audio, &format), 1);
    EXPECT_EQ(video, 1);
    EXPECT_EQ(audio, 0);
    EXPECT_EQ(format, 1);
}

TEST(VideoDecision, neverChoosesARulePast255)
{
    Tables tables;
    std::vector<Rule> table(300, videoRule(2, tables.audio));
    table.push_back(videoRule(-1, nullptr));
    for (const int position : {256, 255}) {
        table[static_cast<std::size_t>(position)].vCodecId = kH264;
        EXPECT_EQ(decideVideo(table.data()).video, position);
        EXPECT_EQ(decideVideo(table.data()).result, position < 256);
    }
}

} // namespace
} // namespace vornak::test

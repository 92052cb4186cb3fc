#include "tests/decision/rules.h"

#include <climits>
#include <gtest/gtest.h>

namespace vornak::test {
namespace {

using Rule = TRANSCODE_VIDEO_MAPPING_ST;

struct VideoInput {
    int codecId = kH264, profileId = 2, level = 41, width = 1920, height = 1080, bitrate = 8000000,
        flag = 0;
    AudioInput audio = {};
    int prefer = 0, match = 1, force = 0, assign = 0;
};

Outcome decideVideo(Rule *table, const VideoInput &in = {})
{
    Outcome o;
    o.result = getVideoTranscodeIndex2(
        table, in.codecId, in.profileId, in.level, in.width, in.height, in.bitrate,
        in.audio.codecId, in.audio.profileId, in.audio.level, in.audio.channels, in.audio.bitrate,
        in.audio.sampleRate, in.audio.formatId, &o.video, &o.audio, &o.format, &o.mime, &o.pn,
        &o.dst, in.prefer, in.match, in.force, in.assign, in.flag);
    return o;
}

/// A table whose second rule is for H.264 and whose audio takes everything in MP4.
struct Tables {
    TANASCODE_FORMAT_MAPPING_ST formats[2] = {entry(kMp4), entry(-1)};
    TRANSCODE_AUDIO_MAPPING_ST audio[2] = {audioRule(0, formats), audioRule(-1, nullptr)};
    Rule video[3] = {videoRule(2, audio), videoRule(kH264, audio), videoRule(-1, nullptr)};
};

TEST(VideoDecision, comparesEachLimit)
{
    const struct {
        const char *what;
        void (*limit)(Rule &);
        void (*source)(VideoInput &);
        bool fits;
    } cases[] = {
        {"profile within", [](Rule &r) { r.vProfileId = 6; }, [](VideoInput &) {}, true},
        {"profile outside", [](Rule &r) { r.vProfileId = 5; }, [](VideoInput &) {}, false},
        {"profile unknown", [](Rule &r) { r.vProfileId = 5; },
         [](VideoInput &v) { v.profileId = 0; }, true},
        {"level at", [](Rule &r) { r.vLevel = 41; }, [](VideoInput &) {}, true},
        {"level above", [](Rule &r) { r.vLevel = 40; }, [](VideoInput &) {}, false},
        {"size at the maximum", [](Rule &r) { r.maxWidth = 1920, r.maxHeight = 1080; },
         [](VideoInput &) {}, true},
        {"too wide", [](Rule &r) { r.maxWidth = 1919, r.maxHeight = 1080; }, [](VideoInput &) {},
         false},
        {"too high", [](Rule &r) { r.maxWidth = 1920, r.maxHeight = 1080; },
         [](VideoInput &v) { v.height = 1088; }, false},
        {"half a pair", [](Rule &r) { r.maxWidth = 640; }, [](VideoInput &) {}, true},
        {"the other half", [](Rule &r) { r.maxHeight = 480, r.maxWidth = -1; }, [](VideoInput &) {},
         true},
        {"close enough", [](Rule &r) { r.maxWidth = 1920, r.maxHeight = 1080, r.tolerance = 8; },
         [](VideoInput &v) { v.height = 1088, v.width = 1912; }, true},
        {"not close enough",
         [](Rule &r) { r.maxWidth = 1920, r.maxHeight = 1080, r.tolerance = 8; },
         [](VideoInput &v) { v.height = 1089; }, false},
        {"smaller is not close",
         [](Rule &r) { r.maxWidth = 1920, r.maxHeight = 1080, r.tolerance = 8; },
         [](VideoInput &v) { v.width = 1280, v.height = 720; }, false},
        {"distances don't wrap",
         [](Rule &r) { r.maxWidth = r.maxHeight = INT_MAX, r.tolerance = 8; },
         [](VideoInput &v) { v.width = v.height = INT_MIN; }, false},
        {"a negative tolerance is none",
         [](Rule &r) { r.maxWidth = 1920, r.maxHeight = 1080, r.tolerance = -8; },
         [](VideoInput &v) { v.width = 1280, v.height = 720; }, true},
        {"size at the minimum", [](Rule &r) { r.minWidth = 1920, r.minHeight = 1080; },
         [](VideoInput &) {}, true},
        {"too narrow", [](Rule &r) { r.minWidth = 1921, r.minHeight = 1; }, [](VideoInput &) {},
         false},
        {"too low", [](Rule &r) { r.minWidth = 1, r.minHeight = 1081; }, [](VideoInput &) {},
         false},
        {"half a minimum", [](Rule &r) { r.minHeight = 1081; }, [](VideoInput &) {}, true},
        {"larger is not close",
         [](Rule &r) { r.minWidth = 1280, r.minHeight = 720, r.tolerance = 8; },
         [](VideoInput &) {}, false},
        {"bit rate at", [](Rule &r) { r.maxBitrate = r.minBitrate = 8000000; }, [](VideoInput &) {},
         true},
        {"bit rate above", [](Rule &r) { r.maxBitrate = 7999999; }, [](VideoInput &) {}, false},
        {"bit rate below", [](Rule &r) { r.minBitrate = 8000001; }, [](VideoInput &) {}, false},
        {"another codec", [](Rule &r) { r.vCodecId = 13; }, [](VideoInput &) {}, false},
        {"any codec, limits unread", [](Rule &r) { r.vCodecId = 0, r.vLevel = 10; },
         [](VideoInput &) {}, true},
        {"an exception", [](Rule &r) { r.playException = 6; }, [](VideoInput &v) { v.flag = 4; },
         false},
        {"exceptions partly covered", [](Rule &r) { r.playException = 4; },
         [](VideoInput &v) { v.flag = 6; }, true},
        {"exceptions not covered", [](Rule &) {}, [](VideoInput &v) { v.flag = 4; }, true},
        {"no exception", [](Rule &r) { r.playException = 4; }, [](VideoInput &) {}, true},
        {"any codec, exceptions unread", [](Rule &r) { r.vCodecId = 0, r.playException = 4; },
         [](VideoInput &v) { v.flag = 4; }, true},
    };
    for (const auto &c : cases) {
        Tables tables;
        c.limit(tables.video[1]);
        VideoInput source;
        c.source(source);
        EXPECT_EQ(decideVideo(tables.video, source).video, c.fits ? 1 : 256) << c.what;
    }
}

TEST(VideoDecision, keepsAndTranscodes)
{
    char mime[] = "video/mpeg", pn[] = "AVC_TS";
    TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(kTransportStream), entry(kMp4), entry(-1)};
    formats[0].mime = mime;
    formats[0].pn = pn;
    TRANSCODE_AUDIO_MAPPING_ST audio[] = {audioRule(kAac, formats), audioRule(-1, nullptr)};
    audio[0].maxChannels = 2;
    Rule table[] = {videoRule(kH264, audio), videoRule(-1, nullptr)};
    table[0].maxWidth = 1920;
    table[0].maxHeight = 1080;

    const VideoInput kept;
    VideoInput surround;
    surround.audio.codecId = kAc3;
    surround.audio.channels = 6;
    surround.audio.formatId = kMatroska;
    VideoInput assigned = surround;
    assigned.assign = 1;
    VideoInput large;
    large.width = 3840;
    VideoInput unmatched = large;
    unmatched.match = 0;
    VideoInput oddMatch = large;
    oddMatch.match = 2;
    VideoInput forced;
    forced.force = 1;
    VideoInput preferred;
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
        TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(c.output), entry(0), entry(-1)};
        TRANSCODE_AUDIO_MAPPING_ST audio[] = {audioRule(0, formats), audioRule(-1, nullptr)};
        Rule table[] = {videoRule(0, audio), videoRule(-1, nullptr)};
        VideoInput source;
        source.audio.formatId = c.source;
        EXPECT_EQ(decideVideo(table, source).format, 0) << c.source;
        formats[0].formatId = 0; // keeps the source's container, folded
        EXPECT_EQ(decideVideo(table, source).dst, c.source >> 16 ? c.source : c.output);

        // The step itself takes the id as it is.
        Outcome o;
        FindVideoTranscode(table, kH264, 0, 0, 1, 1, 1, kAac, 0, 0, 2, 1, 1, c.source, &o.video,
                           &o.audio, &o.format, nullptr, nullptr, &o.dst, 0, 1, 0, 0, 0);
        EXPECT_EQ(o.dst, c.source);
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
    int kept = kUntouched;
    for (int missing = 0; missing < 3; ++missing)
        EXPECT_EQ(getVideoTranscodeIndex(
                      tables.video, kH264, 0, 0, 1, 1, 1, kAac, 0, 0, 2, 1, 1, kMp4,
                      missing == 0 ? nullptr : &kept, missing == 1 ? nullptr : &kept,
                      missing == 2 ? nullptr : &kept, nullptr, nullptr, nullptr, 1, 0, 0, 0),
                  1);
    EXPECT_EQ(kept, kUntouched);
    int video = 0, audio = 0, format = 0;
    EXPECT_EQ(getVideoTranscodeIndex(tables.video, 13, 0, 0, 1, 1, 1, kAac, 0, 0, 2, 1, 1, kMp4,
                                     &video, &audio, &format, nullptr, nullptr, nullptr, 1, 0, 0,
                                     0),
              0);
    EXPECT_EQ(video, 256);
}

TEST(VideoDecision, neverChoosesARulePast255)
{
    Tables tables;
    std::vector<Rule> table(300, videoRule(2, tables.audio));
    table.push_back(videoRule(-1, nullptr));
    table[256].vCodecId = kH264;
    EXPECT_EQ(decideVideo(table.data()).video, 256);
    EXPECT_EQ(decideVideo(table.data()).result, 0);
    table[255].vCodecId = kH264;
    EXPECT_EQ(decideVideo(table.data()).video, 255);
    EXPECT_EQ(decideVideo(table.data()).result, 1);
}

} // namespace
} // namespace vornak::test

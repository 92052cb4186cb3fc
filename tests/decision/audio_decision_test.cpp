#include "tests/decision/rules.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

TEST(AudioDecision, comparesEachLimit)
{
    using R = AudioRule;
    using S = AudioInput;
    const struct {
        int R::*limit;
        int bound;
        int S::*property;
        std::vector<int> fits, refused;
    } cases[] = {
        {&R::aProfileId, 5, &S::profileId, {4, 5, 0}, {6}},
        {&R::aProfileId, -8, &S::profileId, {2}, {}},
        {&R::aLevel, 41, &S::level, {41}, {42}},
        {&R::maxChannels, 2, &S::channels, {2}, {3}},
        {&R::maxChannels, -1, &S::channels, {8}, {}},
        {&R::maxChannels, 0, &S::channels, {8}, {}},
        {&R::minChannels, 2, &S::channels, {2}, {1}},
        {&R::maxBitrate, 192000, &S::bitrate, {192000}, {192001}},
        {&R::minBitrate, 64000, &S::bitrate, {64000}, {63999}},
        {&R::minBitrate, 1, &S::bitrate, {}, {-5}},
        {&R::maxSampleRate, 48000, &S::sampleRate, {48000}, {48001}},
        {&R::minSampleRate, 44100, &S::sampleRate, {44100}, {44099}},
    };
    for (const auto &c : cases) {
        Format formats[] = {entry(kMp4), entry(-1)};
        R table[] = {audioRule(kMp3, formats), audioRule(kAac, formats), audioRule(-1, nullptr)};
        table[1].*c.limit = c.bound;
        const auto chosen = [&](int value) {
            S source;
            source.*c.property = value;
            return decideMusic(table, source).audio;
        };
        for (const int value : c.fits) EXPECT_EQ(chosen(value), 1) << value << " of " << c.bound;
        for (const int value : c.refused)
            EXPECT_EQ(chosen(value), 256) << value << " of " << c.bound;
    }
}

TEST(AudioDecision, takesTheFirstRuleThatFits)
{
    Format formats[] = {entry(kMp4), entry(-1)};
    AudioRule wildcard = audioRule(0, formats);
    wildcard.maxChannels = 1; // a wildcard's limits are not looked at
    AudioRule table[] = {audioRule(kMp3, formats), wildcard, audioRule(kAac, formats),
                         audioRule(kAac, formats), audioRule(-1, nullptr)};
    EXPECT_EQ(decideMusic(table).audio, 1);
    EXPECT_EQ(decideMusic(table + 2).audio, 0);
}

TEST(AudioDecision, deliversTheWholeOutcome)
{
    char mp3Mime[] = "audio/mpeg", mp3Name[] = "MP3", mp4Mime[] = "audio/mp4";
    Format mp3[] = {entry(kMp3File), entry(-1)}, aac[] = {entry(kMp4), entry(kAdts), entry(-1)};
    mp3[0].mime = mp3Mime;
    mp3[0].pn = mp3Name;
    aac[0].mime = mp4Mime;
    AudioRule table[] = {audioRule(kMp3, mp3), audioRule(kAac, aac), audioRule(-1, nullptr)};
    table[0].maxChannels = 2;
    table[1] = takingOnly(AudioInput{}, aac);

    AudioInput mp4, matroska;
    mp4.formatId = 10 << 16 | kMp4;
    AudioInput surround = mp4;
    surround.channels = 6;
    matroska.formatId = kMatroska;

    const Outcome kept{1, kUntouched, 1, 0, kMp4, 0, mp4Mime, nullptr};
    EXPECT_EQ(decideMusic(table, mp4), kept);
    const Outcome transcoded{0, kUntouched, 256, 0, kMp3File, 0, mp3Mime, mp3Name};
    EXPECT_EQ(decideMusic(table, surround), transcoded);
    const Outcome remuxed{0, kUntouched, 1, 256, kMp4, 0, mp4Mime, nullptr};
    EXPECT_EQ(decideMusic(table, matroska), remuxed);
    const Outcome preferred{1, kUntouched, 1, 1, kAdts, 0, nullptr, nullptr};
    EXPECT_EQ(decideMusic(table, mp4, kAdts), preferred);
    const Outcome forced{0, kUntouched, 256, 256, kMp3File, 0, mp3Mime, mp3Name};
    EXPECT_EQ(decideMusic(table, mp4, 0, 1), forced);

    // The stream fits, its container doesn't and must not be made: rule 0 takes over.
    aac[0].noTranscode = 1;
    EXPECT_EQ(decideMusic(table, matroska), transcoded);
    // Forbidden by rule 0 as well, once it can't be sought in and is replaced by itself.
    mp3[0].noTranscode = mp3[0].nonSeekable = 1;
    const Outcome forbidden{3, kUntouched, 256, 256, kMp3File, 0, mp3Mime, mp3Name};
    EXPECT_EQ(decideMusic(table, matroska), forbidden);
    mp3[0].noTranscode = 0;
    EXPECT_EQ(decideMusic(table, surround).result, 2);

    Outcome plain;
    plain.result =
        getMusicTranscodeIndex(table, kAac, 1, 4, 2, 128000, 48000, mp4.formatId, &plain.audio,
                               &plain.format, &plain.mime, &plain.pn, &plain.dst);
    EXPECT_EQ(plain, (Outcome{1, kUntouched, 1, 0, kMp4, kUntouched, mp4Mime, nullptr}));
}

// The step of a video's decision, called by itself: a rule may fit and its sound be transcoded
// with the video all the same, and a result of 0 is left as it is.
TEST(AudioDecision, isAStepOfTheVideos)
{
    char mime[] = "audio/mp4", pn[] = "AAC";
    Format formats[] = {entry(kTransportStream), entry(kWavFile), entry(kMp4), entry(-1)};
    formats[2].mime = mime;
    formats[2].pn = pn;
    AudioRule table[] = {audioRule(kMp3, formats), takingOnly(AudioInput{kPcm16}, formats),
                         audioRule(-1, nullptr)};
    const struct {
        int channels, transcoding, prefer, force;
        Outcome outcome;
    } cases[] = {
        {2, 0, 0, 0, {0, kUntouched, 1, 2, kMp4, 0, mime, pn}},
        {2, 1, 0, 0, {0, kUntouched, 1, 0, kTransportStream, 0}},
        {2, 2, 0, 0, {0, kUntouched, 1, 2, kMp4, 0, mime, pn}}, // only 1 transcodes
        {2, 1, kWavFile, 0, {0, kUntouched, 1, 1, kWavFile, 1}},
        {3, 0, 0, 0, {0, kUntouched, 256, 0, kTransportStream, 0}},
        {2, 0, 0, 1, {0, kUntouched, 256, 256, kTransportStream, 0}},
    };
    const auto find = [&](const auto &c, int *audio, int *format, Outcome &o) {
        return FindMusicTranscode(table, kPcm16, 1, 4, c.channels, 128000, 48000, kMp4, audio,
                                  format, &o.mime, &o.pn, &o.dst, c.transcoding, c.prefer,
                                  &o.wavPcm, c.force);
    };
    for (const auto &c : cases) {
        Outcome o, untouched;
        o.result = find(c, &o.audio, &o.format, o);
        EXPECT_EQ(o, c.outcome) << c.channels << ' ' << c.transcoding << ' ' << c.prefer;
        EXPECT_EQ(find(c, nullptr, &untouched.format, untouched), 1);
        EXPECT_EQ(find(c, &untouched.audio, nullptr, untouched), 1);
        EXPECT_EQ(untouched, Outcome());
    }
}

TEST(AudioDecision, knowsPcmInWav)
{
    const struct {
        int codecId, formatId, isWavPcm;
    } cases[] = {
        {0x10000, kWavFile, 1}, {0x10001, kWavFile, 1},    {0x1000C, kWavFile, 1},
        {0x1000D, kWavFile, 1}, {0x10002, kWavFile, 0},    {0x1000B, kWavFile, 0},
        {0x1000E, kWavFile, 0}, {kMp3, kWavFile, 0},       {0x10000, kMp4, 0},
        {0x10000, 0, 0},        {0x10000, 1 << 16 | 2, 0},
    };
    for (const auto &c : cases) {
        Format formats[] = {entry(c.formatId), entry(-1)};
        AudioRule table[] = {audioRule(c.codecId, formats), audioRule(-1, nullptr)};
        EXPECT_EQ(decideMusic(table, {}, 0, 1).wavPcm, c.isWavPcm) << c.codecId;
    }
    // An entry without an id keeps the source's container.
    Format any[] = {entry(0), entry(-1)};
    AudioRule table[] = {audioRule(kPcm16, any), audioRule(-1, nullptr)};
    AudioInput wav;
    wav.codecId = kPcm16;
    wav.formatId = kWavFile;
    EXPECT_EQ(decideMusic(table, wav).wavPcm, 1);
}

TEST(AudioDecision, reportsMissingTables)
{
    EXPECT_EQ(decideMusic(nullptr), Outcome{1});

    AudioRule noFormats[] = {audioRule(kAac, nullptr), audioRule(-1, nullptr)};
    Outcome expected{1};
    expected.audio = 0;
    expected.wavPcm = 0;
    EXPECT_EQ(decideMusic(noFormats), expected);
    expected.audio = 256;
    EXPECT_EQ(decideMusic(noFormats + 1), expected);

    Format formats[] = {entry(kMp3File), entry(-1)};
    AudioRule table[] = {audioRule(kMp3, formats), audioRule(kAac, formats),
                         audioRule(-1, nullptr)};
    int index = kUntouched;
    const auto decide = [&](int *audio, int *format, int *container = nullptr) {
        return getMusicTranscodeIndex(table, kAac, 0, 0, 2, 1, 1, kMp4, audio, format, nullptr,
                                      nullptr, container);
    };
    EXPECT_EQ(decide(nullptr, &index), 1);
    EXPECT_EQ(decide(&index, nullptr), 1);
    EXPECT_EQ(index, kUntouched);
    EXPECT_EQ(decide(&index, &index), 0); // one variable for both: the rule fits, no container does
    EXPECT_EQ(index, 256);
    formats[0].noTranscode = formats[0].nonSeekable = 1;
    int format = 0;
    EXPECT_EQ(decide(&index, &format, &index), 3); // the container stands over the index: no loop
}

TEST(AudioDecision, neverChoosesARulePast255)
{
    Format formats[] = {entry(kMp4), entry(-1)};
    std::vector<AudioRule> table(300, audioRule(kMp3, formats));
    table.push_back(audioRule(-1, nullptr));
    for (const int position : {256, 255}) {
        table[static_cast<std::size_t>(position)].aCodecId = kAac;
        EXPECT_EQ(decideMusic(table.data()).audio, position);
        EXPECT_EQ(decideMusic(table.data()).result, position < 256); // 256: transcoded by rule 0
    }
}

} // namespace
} // namespace vornak::test

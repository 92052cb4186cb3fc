#include "tests/decision/rules.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

using Rule = TRANSCODE_AUDIO_MAPPING_ST;

TEST(AudioDecision, comparesEachLimit)
{
    const struct {
        int Rule::*limit;
        int bound;
        int AudioInput::*property;
        int value;
        bool fits;
    } cases[] = {
        {&Rule::aProfileId, 5, &AudioInput::profileId, 4, true},
        {&Rule::aProfileId, 5, &AudioInput::profileId, 5, true},
        {&Rule::aProfileId, 5, &AudioInput::profileId, 6, false},
        {&Rule::aProfileId, 5, &AudioInput::profileId, 0, true},
        {&Rule::aProfileId, -8, &AudioInput::profileId, 2, true},
        {&Rule::aLevel, 41, &AudioInput::level, 41, true},
        {&Rule::aLevel, 41, &AudioInput::level, 42, false},
        {&Rule::maxChannels, 2, &AudioInput::channels, 2, true},
        {&Rule::maxChannels, 2, &AudioInput::channels, 3, false},
        {&Rule::maxChannels, -1, &AudioInput::channels, 8, true},
        {&Rule::maxChannels, 0, &AudioInput::channels, 8, true},
        {&Rule::minChannels, 2, &AudioInput::channels, 2, true},
        {&Rule::minChannels, 2, &AudioInput::channels, 1, false},
        {&Rule::maxBitrate, 192000, &AudioInput::bitrate, 192000, true},
        {&Rule::maxBitrate, 192000, &AudioInput::bitrate, 192001, false},
        {&Rule::minBitrate, 64000, &AudioInput::bitrate, 64000, true},
        {&Rule::minBitrate, 64000, &AudioInput::bitrate, 63999, false},
        {&Rule::minBitrate, 1, &AudioInput::bitrate, -5, false},
        {&Rule::maxSampleRate, 48000, &AudioInput::sampleRate, 48000, true},
        {&Rule::maxSampleRate, 48000, &AudioInput::sampleRate, 48001, false},
        {&Rule::minSampleRate, 44100, &AudioInput::sampleRate, 44100, true},
        {&Rule::minSampleRate, 44100, &AudioInput::sampleRate, 44099, false},
    };
    for (const auto &c : cases) {
        TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(kMp4), entry(-1)};
        Rule table[] = {audioRule(kMp3, formats), audioRule(kAac, formats), audioRule(-1, nullptr)};
        table[1].*c.limit = c.bound;
        AudioInput source;
        source.*c.property = c.value;
        EXPECT_EQ(decideMusic(table, source).audio, c.fits ? 1 : 256)
            << c.value << " against " << c.bound;
    }
}

TEST(AudioDecision, takesTheFirstRuleThatFits)
{
    TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(kMp4), entry(-1)};
    Rule wildcard = audioRule(0, formats);
    wildcard.maxChannels = 1; // a wildcard's limits are not looked at
    Rule table[] = {audioRule(kMp3, formats), wildcard, audioRule(kAac, formats),
                    audioRule(kAac, formats), audioRule(-1, nullptr)};
    EXPECT_EQ(decideMusic(table).audio, 1);
    EXPECT_EQ(decideMusic(table + 2).audio, 0);
}

TEST(AudioDecision, deliversTheWholeOutcome)
{
    char mp3Mime[] = "audio/mpeg", mp3Name[] = "MP3", mp4Mime[] = "audio/mp4";
    TANASCODE_FORMAT_MAPPING_ST mp3[] = {entry(kMp3File), entry(-1)};
    mp3[0].mime = mp3Mime;
    mp3[0].pn = mp3Name;
    TANASCODE_FORMAT_MAPPING_ST aac[] = {entry(kMp4), entry(kAdts), entry(-1)};
    aac[0].mime = mp4Mime;
    Rule table[] = {audioRule(kMp3, mp3), audioRule(kAac, aac), audioRule(-1, nullptr)};
    table[0].maxChannels = table[1].maxChannels = 2;

    AudioInput mp4;
    mp4.formatId = 10 << 16 | kMp4;
    AudioInput surround = mp4;
    surround.channels = 6;
    AudioInput matroska;
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
    const Outcome fallen{0, kUntouched, 256, 0, kMp3File, 0, mp3Mime, mp3Name};
    EXPECT_EQ(decideMusic(table, matroska), fallen);
    // Forbidden by rule 0 as well, once it can't be sought in and is replaced by itself.
    mp3[0].noTranscode = mp3[0].nonSeekable = 1;
    const Outcome forbidden{3, kUntouched, 256, 256, kMp3File, 0, mp3Mime, mp3Name};
    EXPECT_EQ(decideMusic(table, matroska), forbidden);
    mp3[0].noTranscode = 0;
    EXPECT_EQ(decideMusic(table, surround).result, 2);

    Outcome plain;
    plain.result =
        getMusicTranscodeIndex(table, kAac, 1, 2, 2, 128000, 48000, mp4.formatId, &plain.audio,
                               &plain.format, &plain.mime, &plain.pn, &plain.dst);
    EXPECT_EQ(plain, (Outcome{1, kUntouched, 1, 0, kMp4, kUntouched, mp4Mime, nullptr}));
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
        TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(c.formatId), entry(-1)};
        Rule table[] = {audioRule(c.codecId, formats), audioRule(-1, nullptr)};
        EXPECT_EQ(decideMusic(table, {}, 0, 1).wavPcm, c.isWavPcm) << c.codecId;
    }
    // An entry without an id keeps the source's container.
    TANASCODE_FORMAT_MAPPING_ST any[] = {entry(0), entry(-1)};
    Rule table[] = {audioRule(kPcm16, any), audioRule(-1, nullptr)};
    AudioInput wav;
    wav.codecId = kPcm16;
    wav.formatId = kWavFile;
    EXPECT_EQ(decideMusic(table, wav).wavPcm, 1);
}

TEST(AudioDecision, reportsMissingTables)
{
    const Outcome untouched{1};
    EXPECT_EQ(decideMusic(nullptr), untouched);

    Rule noFormats[] = {audioRule(kAac, nullptr), audioRule(-1, nullptr)};
    Outcome expected{1};
    expected.audio = 0;
    expected.wavPcm = 0;
    EXPECT_EQ(decideMusic(noFormats), expected);
    expected.audio = 256;
    EXPECT_EQ(decideMusic(noFormats + 1), expected);

    TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(kMp4), entry(-1)};
    Rule table[] = {audioRule(kAac, formats), audioRule(-1, nullptr)};
    int index = kUntouched;
    EXPECT_EQ(getMusicTranscodeIndex(table, kAac, 0, 0, 2, 1, 1, kMp4, nullptr, &index, nullptr,
                                     nullptr, nullptr),
              1);
    EXPECT_EQ(getMusicTranscodeIndex(table, kAac, 0, 0, 2, 1, 1, kMp4, &index, nullptr, nullptr,
                                     nullptr, nullptr),
              1);
    EXPECT_EQ(index, kUntouched);
}

TEST(AudioDecision, takesOneVariableForBothIndexes)
{
    TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(kMp3File), entry(-1)};
    Rule table[] = {audioRule(kMp3, formats), audioRule(kAac, formats), audioRule(-1, nullptr)};
    int index = kUntouched;
    EXPECT_EQ(getMusicTranscodeIndex(table, kAac, 0, 0, 2, 1, 1, kMp4, &index, &index, nullptr,
                                     nullptr, nullptr),
              0); // its rule fits, no container does
    EXPECT_EQ(index, 256);
}

TEST(AudioDecision, neverChoosesARulePast255)
{
    TANASCODE_FORMAT_MAPPING_ST formats[] = {entry(kMp4), entry(-1)};
    std::vector<Rule> table(300, audioRule(kMp3, formats));
    table.push_back(audioRule(-1, nullptr));
    table[256].aCodecId = kAac;
    EXPECT_EQ(decideMusic(table.data()).audio, 256);
    EXPECT_EQ(decideMusic(table.data()).result, 0); // transcoded by rule 0, not kept by rule 256
    table[255].aCodecId = kAac;
    EXPECT_EQ(decideMusic(table.data()).audio, 255);
    EXPECT_EQ(decideMusic(table.data()).result, 1);
}

} // namespace
} // namespace vornak::test

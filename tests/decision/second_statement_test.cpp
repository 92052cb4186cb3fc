// The decision stated a second time, as plainly as it can be, and compared with the library's
// over random tables and sources.
#include "tests/decision/rules.h"

#include <gtest/gtest.h>
#include <random>

namespace vornak::test {
namespace {

using Format = TANASCODE_FORMAT_MAPPING_ST;
using Audio = TRANSCODE_AUDIO_MAPPING_ST;
using Video = TRANSCODE_VIDEO_MAPPING_ST;

struct Source {
    int vCodec, vProfile, vLevel, width, height, vBitrate, flag;
    int aCodec, aProfile, aLevel, channels, aBitrate, sampleRate;
    int format, prefer, match, force, assign;
};

int low(int id)
{
    return id & 0xFFFF;
}
int high(int id)
{
    return id >> 16 & 0xFFFF;
}

bool agree(int e, int w)
{
    return low(e) == low(w) && (high(w) == 0 || high(e) == 0 || high(e) == high(w));
}

void statedFormat(const Format *t, const Source &s, int transcoding, Outcome &o)
{
    if (!t) {
        o.result = 1;
        return;
    }
    o.format = -1;
    if (transcoding == 1) o.format = 0;
    for (int i = 0; transcoding != 1 && t[i].formatId != -1 && o.format < 0; i++)
        if (low(t[i].formatId) == 0 || agree(t[i].formatId, s.format)) o.format = i;
    bool preferred = false;
    for (int i = 0; s.prefer > 0 && t[i].formatId != -1 && !preferred; i++)
        if (agree(t[i].formatId, s.prefer)) {
            o.format = i;
            preferred = true;
        }
    o.result = 0;
    if (s.force || o.format < 0) {
        o.format = 256;
    } else if (transcoding == 1 && t[o.format].nonSeekable == 1) {
        o.format = 256;
        o.result = t[0].nonSeekable == 1 ? 2 : 0;
    }
    const Format &used = t[o.format % 256];
    o.mime = used.mime;
    o.pn = used.pn;
    o.dst = used.formatId == 0 ? s.format : used.formatId;
    if (o.format == 256 && t[0].noTranscode == 1) o.result = 3;
}

bool statedAudioFit(const Audio &r, const Source &s)
{
    if (r.aCodecId == 0) return true;
    if (r.aCodecId != s.aCodec) return false;
    if (r.aProfileId > 0 && (s.aProfile & ~r.aProfileId) != 0) return false;
    if (r.aLevel > 0 && s.aLevel > r.aLevel) return false;
    if (r.maxChannels > 0 && s.channels > r.maxChannels) return false;
    if (r.minChannels > 0 && s.channels < r.minChannels) return false;
    if (r.maxBitrate > 0 && s.aBitrate > r.maxBitrate) return false;
    if (r.minBitrate > 0 && s.aBitrate < r.minBitrate) return false;
    if (r.maxSampleRate > 0 && s.sampleRate > r.maxSampleRate) return false;
    if (r.minSampleRate > 0 && s.sampleRate < r.minSampleRate) return false;
    return true;
}

void statedAudio(const Audio *t, const Source &s, int transcoding, Outcome &o)
{
    if (!t) {
        o.result = 1;
        return;
    }
    o.audio = -1;
    for (int i = 0; t[i].aCodecId != -1 && o.audio < 0; i++)
        if (statedAudioFit(t[i], s)) o.audio = i;
    if (o.audio < 0 || s.force) {
        o.audio = 256;
        transcoding = 1;
    }
    statedFormat(t[o.audio % 256].pFormatTable, s, transcoding, o);
    if (o.result == 3 && o.audio != 256) {
        o.audio = 256;
        statedFormat(t[0].pFormatTable, s, 1, o);
    }
}

bool statedVideoFit(const Video &r, const Source &s)
{
    const auto close = [&](long a, long b) { return std::abs(a - b) <= r.tolerance; };
    if (r.vCodecId == 0) return true;
    if (r.vCodecId != s.vCodec) return false;
    if (s.flag != 0 && (s.flag & ~r.playException) == 0) return false;
    if (r.vProfileId > 0 && (s.vProfile & ~r.vProfileId) != 0) return false;
    if (r.vLevel > 0 && s.vLevel > r.vLevel) return false;
    if (r.maxWidth > 0 && r.maxHeight > 0) {
        if (r.tolerance > 0 && !(close(s.width, r.maxWidth) && close(s.height, r.maxHeight)))
            return false;
        if (r.tolerance <= 0 && (s.width > r.maxWidth || s.height > r.maxHeight)) return false;
    }
    if (r.minWidth > 0 && r.minHeight > 0) {
        if (r.tolerance > 0 && !(close(s.width, r.minWidth) && close(s.height, r.minHeight)))
            return false;
        if (r.tolerance <= 0 && (s.width < r.minWidth || s.height < r.minHeight)) return false;
    }
    if (r.maxBitrate > 0 && s.vBitrate > r.maxBitrate) return false;
    return r.minBitrate <= 0 || s.vBitrate >= r.minBitrate;
}

Outcome stated(const Video *t, Source s)
{
    Outcome o;
    if (s.format == 17 || s.format == 19) s.format = 10;
    if (s.format == 18 || s.format == 20) s.format = 11;
    o.video = -1;
    for (int i = 0; t[i].vCodecId != -1 && o.video < 0; i++)
        if (s.match != 1 || statedVideoFit(t[i], s)) o.video = i;
    const bool transcoding = s.assign || o.video < 0 || s.force;
    if (transcoding) o.video = 256;
    const Video &r = t[o.video % 256];
    statedAudio(r.pAudioTable, s, transcoding, o);
    const bool anything = o.video > 255 || o.audio > 255 || o.format > 255;
    if (r.noTranscode == 1 && anything) {
        o.result = 3;
        o.dst = s.format;
        o.mime = o.pn = nullptr;
    }
    if (o.result == 0 && !anything) o.result = 1;
    return o;
}

/// Random rules and sources over few values, so that bounds are met from both sides.
class Generator {
public:
    int pick(std::initializer_list<int> values)
    {
        return values
            .begin()[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random_)];
    }
    int flag() { return pick({0, 0, 0, 0, 1, 2}); }
    int limit() { return pick({0, 0, 0, -1, 2, 3}); }
    int value() { return pick({0, 1, 2, 3, 4, 7, -2}); }
    int container() { return pick({8, 8, 11, 10, 17, 20, 3 << 16 | 8, 4 << 16 | 8, -65528}); }

    std::vector<Format> formats()
    {
        std::vector<Format> t(static_cast<std::size_t>(pick({0, 1, 2, 4})));
        for (Format &f : t) {
            f = entry(pick({0, 5 << 16, container(), container(), container()}), flag(), flag());
            f.mime = texts_ + pick({0, 1, 2});
            f.pn = texts_ + pick({0, 1, 2});
        }
        t.push_back(entry(-1));
        return t;
    }
    Audio audio(Format *formats)
    {
        Audio r = audioRule(pick({0, 5, 5, 6}), pick({0, 1, 1, 1, 1, 1}) ? formats : nullptr);
        for (int Audio::*field :
             {&Audio::aProfileId, &Audio::aLevel, &Audio::maxChannels, &Audio::minChannels,
              &Audio::maxBitrate, &Audio::minBitrate, &Audio::maxSampleRate, &Audio::minSampleRate})
            r.*field = pick({0, 0, 0, 1}) ? limit() : 0;
        return r;
    }
    Video video(Audio *table)
    {
        Video r = videoRule(pick({0, 5, 5, 5, 6}), pick({0, 1, 1, 1, 1, 1}) ? table : nullptr);
        for (int Video::*field :
             {&Video::vProfileId, &Video::vLevel, &Video::maxWidth, &Video::maxHeight,
              &Video::minWidth, &Video::minHeight, &Video::maxBitrate, &Video::minBitrate,
              &Video::tolerance, &Video::playException})
            r.*field = pick({0, 0, 1}) ? limit() : 0;
        r.noTranscode = flag();
        return r;
    }
    Source source()
    {
        return {pick({5, 5, 6, 7}),
                value(),
                value(),
                value(),
                value(),
                value(),
                value(),
                pick({5, 5, 6, 7}),
                value(),
                value(),
                value(),
                value(),
                value(),
                container(),
                pick({0, 0, -8, container()}),
                pick({0, 1, 1, 1, 2}),
                pick({0, 0, 0, 0, -1}),
                pick({0, 0, 0, 3})};
    }

private:
    std::mt19937 random_{20};
    char texts_[3] = {};
};

TEST(Decision, agreesWithItsSecondStatement)
{
    Generator g;
    int results[4] = {};
    for (int round = 0; round < 20000; ++round) {
        std::vector<std::vector<Format>> formats;
        std::vector<std::vector<Audio>> audios;
        std::vector<Video> videos;
        formats.reserve(16);
        audios.reserve(4);
        for (int v = g.pick({0, 1, 2, 4}); v > 0; --v) {
            audios.emplace_back();
            for (int a = g.pick({0, 1, 2, 4}); a > 0; --a) {
                formats.push_back(g.formats());
                audios.back().push_back(g.audio(formats.back().data()));
            }
            audios.back().push_back(audioRule(-1, nullptr));
            videos.push_back(g.video(audios.back().data()));
        }
        videos.push_back(videoRule(-1, nullptr));

        for (int call = 0; call < 10; ++call) {
            const Source s = g.source();
            Outcome o;
            o.result = getVideoTranscodeIndex2(
                videos.data(), s.vCodec, s.vProfile, s.vLevel, s.width, s.height, s.vBitrate,
                s.aCodec, s.aProfile, s.aLevel, s.channels, s.aBitrate, s.sampleRate, s.format,
                &o.video, &o.audio, &o.format, &o.mime, &o.pn, &o.dst, s.prefer, s.match, s.force,
                s.assign, s.flag);
            ASSERT_EQ(o, stated(videos.data(), s)) << "round " << round << ", call " << call;
            ++results[o.result];
        }
    }
    for (const int count : results) EXPECT_GT(count, 1000); // every result was met often
}

} // namespace
} // namespace vornak::test

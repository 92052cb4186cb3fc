// A video decision against the same comparisons written by hand as plain branches.
#include "base/media_ids.h"
#include "bench/measure.h"
#include "include/vornak.h"

#include <array>
#include <cstdlib>

namespace vornak::bench {
namespace {

constexpr int kVideoRules = 32, kAudioRules = 8, kFormats = 4;
constexpr int kH264 = "h264"_codec, kAac = "aac"_codec;

using Formats = std::array<TANASCODE_FORMAT_MAPPING_ST, kFormats + 1>;
using Audio = std::array<TRANSCODE_AUDIO_MAPPING_ST, kAudioRules + 1>;
using Video = std::array<TRANSCODE_VIDEO_MAPPING_ST, kVideoRules + 1>;

/// Rules of the source's codecs of which only those at `fitting` positions take it; the others
/// refuse it by their last comparison.
struct Profile {
    Formats formats{};
    Audio audio{};
    Video video{};

    Profile(std::size_t fittingVideo, std::size_t fittingAudio, std::size_t fittingFormat)
    {
        for (std::size_t i = 0; i < kFormats; ++i)
            formats[i].formatId = i == fittingFormat ? kMp4 : 20 + static_cast<int>(i);
        formats[kFormats].formatId = -1;
        for (std::size_t i = 0; i < kAudioRules; ++i) {
            TRANSCODE_AUDIO_MAPPING_ST &rule = audio[i];
            rule = {kAac, 7,    5,       2, 320000,      48000,         1,
                    1000, 8000, nullptr, 0, kAudioRules, formats.data()};
            if (i != fittingAudio) rule.minSampleRate = 48000;
        }
        audio[kAudioRules].aCodecId = -1;
        for (std::size_t i = 0; i < kVideoRules; ++i) {
            TRANSCODE_VIDEO_MAPPING_ST &rule = video[i];
            rule = {kH264, 7, 51, 1920, 1080,    20000000, 16,          16,          1000,
                    0,     0, 0,  4,    nullptr, 0,        kVideoRules, audio.data()};
            if (i != fittingVideo) rule.minBitrate = 15000000;
        }
        video[kVideoRules].vCodecId = -1;
    }
};

struct Source {
    int vCodec = kH264, vProfile = 2, vLevel = 41, width = 1280, height = 720, vBitrate = 5000000;
    int aCodec = kAac, aProfile = 1, aLevel = 2, channels = 2, aBitrate = 128000,
        sampleRate = 44100;
    int format = kMp4, flag = 2;
};

struct Indexes {
    int video = 0, audio = 0, format = 0, dst = 0;
    char *mime = nullptr, *pn = nullptr;
};

// A decision with the library's parameters, in one function of plain branches: the table's
// rules compared as they stand, nothing traced, nothing shared.
using Decide = decltype(getVideoTranscodeIndex2);

[[gnu::noinline]] int byHand(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId,
                             int srcVProfileId, int srcVLevel, int srcWidth, int srcHeight,
                             int srcVBitrate, int srcACodecId, int srcAProfileId, int srcALevel,
                             int srcAChannels, int srcABitrate, int srcASampleRate, int srcFormatId,
                             int *pVideoIndex, int *pAudioIndex, int *pFormatIndex, char **pMime,
                             char **pPN, int *pDstFormatId, int preferFormatId, int matchVideo,
                             int forceTranscode, int assignTrack, int srcVCodecFlag)
{
    if (!pVideoTable) return 1;
    int v = 0;
    for (; pVideoTable[v].vCodecId != -1; ++v) {
        const TRANSCODE_VIDEO_MAPPING_ST &r = pVideoTable[v];
        if (matchVideo != 1 || r.vCodecId == 0) break;
        if (r.vCodecId != srcVCodecId) continue;
        if (srcVCodecFlag != 0 && (srcVCodecFlag & r.playException) == srcVCodecFlag) continue;
        if (r.vProfileId > 0 && (srcVProfileId & r.vProfileId) != srcVProfileId) continue;
        if (r.vLevel > 0 && srcVLevel > r.vLevel) continue;
        if (r.maxWidth > 0 && r.maxHeight > 0) {
            if (r.tolerance > 0) {
                if (std::abs(srcWidth - r.maxWidth) > r.tolerance) continue;
                if (std::abs(srcHeight - r.maxHeight) > r.tolerance) continue;
            } else if (srcWidth > r.maxWidth || srcHeight > r.maxHeight) {
                continue;
            }
        }
        if (r.minWidth > 0 && r.minHeight > 0) {
            if (r.tolerance > 0) {
                if (std::abs(srcWidth - r.minWidth) > r.tolerance) continue;
                if (std::abs(srcHeight - r.minHeight) > r.tolerance) continue;
            } else if (srcWidth < r.minWidth || srcHeight < r.minHeight) {
                continue;
            }
        }
        if (r.maxBitrate > 0 && srcVBitrate > r.maxBitrate) continue;
        if (r.minBitrate > 0 && srcVBitrate < r.minBitrate) continue;
        break;
    }
    bool transcoding = pVideoTable[v].vCodecId == -1 || assignTrack != 0 || forceTranscode != 0;
    *pVideoIndex = transcoding ? 256 : v;

    const TRANSCODE_AUDIO_MAPPING_ST *audio = pVideoTable[*pVideoIndex & 255].pAudioTable;
    int a = 0;
    for (; audio[a].aCodecId != -1; ++a) {
        const TRANSCODE_AUDIO_MAPPING_ST &r = audio[a];
        if (r.aCodecId == 0) break;
        if (r.aCodecId != srcACodecId) continue;
        if (r.aProfileId > 0 && (srcAProfileId & r.aProfileId) != srcAProfileId) continue;
        if (r.aLevel > 0 && srcALevel > r.aLevel) continue;
        if (r.maxChannels > 0 && srcAChannels > r.maxChannels) continue;
        if (r.minChannels > 0 && srcAChannels < r.minChannels) continue;
        if (r.maxBitrate > 0 && srcABitrate > r.maxBitrate) continue;
        if (r.minBitrate > 0 && srcABitrate < r.minBitrate) continue;
        if (r.maxSampleRate > 0 && srcASampleRate > r.maxSampleRate) continue;
        if (r.minSampleRate > 0 && srcASampleRate < r.minSampleRate) continue;
        break;
    }
    transcoding |= audio[a].aCodecId == -1 || forceTranscode != 0;
    *pAudioIndex = audio[a].aCodecId == -1 || forceTranscode != 0 ? 256 : a;

    const TANASCODE_FORMAT_MAPPING_ST *formats = audio[*pAudioIndex & 255].pFormatTable;
    int f = 0;
    for (; !transcoding && formats[f].formatId != -1; ++f) {
        const int id = formats[f].formatId;
        if ((id & 0xFFFF) == 0) break;
        if ((id & 0xFFFF) != (srcFormatId & 0xFFFF)) continue;
        if (srcFormatId >> 16 == 0 || id >> 16 == 0 || id >> 16 == srcFormatId >> 16) break;
    }
    for (int p = 0; preferFormatId > 0 && formats[p].formatId != -1; ++p)
        if ((formats[p].formatId & 0xFFFF) == (preferFormatId & 0xFFFF)) {
            f = p;
            break;
        }
    *pFormatIndex = formats[f].formatId == -1 || forceTranscode != 0 ? 256 : f;
    const TANASCODE_FORMAT_MAPPING_ST &used = formats[*pFormatIndex & 255];
    if (pMime) *pMime = used.mime;
    if (pPN) *pPN = used.pn;
    if (pDstFormatId) *pDstFormatId = used.formatId == 0 ? srcFormatId : used.formatId;
    if (*pFormatIndex == 256 && formats[0].noTranscode == 1) return 3;
    return *pVideoIndex > 255 || *pAudioIndex > 255 || *pFormatIndex > 255 ? 0 : 1;
}

int decide(Decide *function, TRANSCODE_VIDEO_MAPPING_ST *table, const Source &s, Indexes &o)
{
    return function(table, s.vCodec, s.vProfile, s.vLevel, s.width, s.height, s.vBitrate, s.aCodec,
                    s.aProfile, s.aLevel, s.channels, s.aBitrate, s.sampleRate, s.format, &o.video,
                    &o.audio, &o.format, &o.mime, &o.pn, &o.dst, 0, 1, 0, 0, s.flag);
}

void compare(const char *library, const char *hand, Profile &profile, double limit)
{
    Source source;
    opaque(source.vCodec);
    Indexes byTheLibrary, byTheHand;
    measure(library, [&] {
        if (decide(getVideoTranscodeIndex2, profile.video.data(), source, byTheLibrary) != 1)
            std::abort();
    });
    measure(hand, [&] {
        if (decide(byHand, profile.video.data(), source, byTheHand) != 1) std::abort();
    });
    if (byTheLibrary.video != byTheHand.video || byTheLibrary.audio != byTheHand.audio ||
        byTheLibrary.format != byTheHand.format)
        std::abort();
    ratio(library, hand, limit);
}

} // namespace
} // namespace vornak::bench

int main()
{
    using namespace vornak::bench;
    Profile last(kVideoRules - 1, kAudioRules - 1, kFormats - 1);
    Profile first(0, 0, 0);
    compare("decision/last-rules-fit", "by-hand/last-rules-fit", last, 1.25);
    compare("decision/first-rules-fit", "by-hand/first-rules-fit", first, 2);
}

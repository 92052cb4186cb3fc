#include "bench/decision_by_hand.h"

#include "base/media_ids.h"

#include <cstdint>
#include <cstdlib>

namespace vornak::bench {
namespace {

constexpr int kMaxRules = 256;

bool isFar(int value, int size, int tolerance)
{
    return std::abs(std::int64_t{value} - size) > tolerance;
}

bool isSame(int entry, int wanted)
{
    if ((entry & 0xFFFF) != (wanted & 0xFFFF)) return false;
    return wanted >> 16 == 0 || entry >> 16 == 0 || entry >> 16 == wanted >> 16;
}

} // namespace

int decideByHand(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId, int srcVProfileId,
                 int srcVLevel, int srcWidth, int srcHeight, int srcVBitrate, int srcACodecId,
                 int srcAProfileId, int srcALevel, int srcAChannels, int srcABitrate,
                 int srcASampleRate, int srcFormatId, int *pVideoIndex, int *pAudioIndex,
                 int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId, int preferFormatId,
                 int matchVideo, int forceTranscode, int assignTrack, int srcVCodecFlag)
{
    if (!pVideoTable || !pVideoIndex || !pAudioIndex || !pFormatIndex) return VORNAK_NO_TABLE;
    if (srcFormatId == "mpegps_dvd"_container || srcFormatId == "mpegps_mpeg1"_container)
        srcFormatId = "mpegps"_container;
    else if (srcFormatId == "mpegts_m2ts"_container || srcFormatId == "mpegts_204"_container)
        srcFormatId = "mpegts"_container;

    int v = -1;
    for (int i = 0; i < kMaxRules && pVideoTable[i].vCodecId != -1; ++i) {
        const TRANSCODE_VIDEO_MAPPING_ST &r = pVideoTable[i];
        if (matchVideo == 1 && r.vCodecId != 0) {
            if (r.vCodecId != srcVCodecId) continue;
            if (srcVCodecFlag != 0 && (srcVCodecFlag & r.playException) == srcVCodecFlag) continue;
            if (r.vProfileId > 0 && (srcVProfileId & r.vProfileId) != srcVProfileId) continue;
            if (r.vLevel > 0 && srcVLevel > r.vLevel) continue;
            if (r.maxWidth > 0 && r.maxHeight > 0) {
                if (r.tolerance > 0) {
                    if (isFar(srcWidth, r.maxWidth, r.tolerance)) continue;
                    if (isFar(srcHeight, r.maxHeight, r.tolerance)) continue;
                } else if (srcWidth > r.maxWidth || srcHeight > r.maxHeight) {
                    continue;
                }
            }
            if (r.minWidth > 0 && r.minHeight > 0) {
                if (r.tolerance > 0) {
                    if (isFar(srcWidth, r.minWidth, r.tolerance)) continue;
                    if (isFar(srcHeight, r.minHeight, r.tolerance)) continue;
                } else if (srcWidth < r.minWidth || srcHeight < r.minHeight) {
                    continue;
                }
            }
            if (r.maxBitrate > 0 && srcVBitrate > r.maxBitrate) continue;
            if (r.minBitrate > 0 && srcVBitrate < r.minBitrate) continue;
        }
        v = i;
        break;
    }
    bool transcoding = v < 0 || assignTrack != 0 || forceTranscode != 0;
    *pVideoIndex = transcoding ? VORNAK_TRANSCODE : v;
    const TRANSCODE_VIDEO_MAPPING_ST &videoRule = pVideoTable[transcoding ? 0 : v];
    const TRANSCODE_AUDIO_MAPPING_ST *audio = videoRule.pAudioTable;

    int result = VORNAK_NO_TABLE;
    if (audio) {
        int a = -1;
        for (int i = 0; i < kMaxRules && audio[i].aCodecId != -1; ++i) {
            const TRANSCODE_AUDIO_MAPPING_ST &r = audio[i];
            if (r.aCodecId != 0) {
                if (r.aCodecId != srcACodecId) continue;
                if (r.aProfileId > 0 && (srcAProfileId & r.aProfileId) != srcAProfileId) continue;
                if (r.aLevel > 0 && srcALevel > r.aLevel) continue;
                if (r.maxChannels > 0 && srcAChannels > r.maxChannels) continue;
                if (r.minChannels > 0 && srcAChannels < r.minChannels) continue;
                if (r.maxBitrate > 0 && srcABitrate > r.maxBitrate) continue;
                if (r.minBitrate > 0 && srcABitrate < r.minBitrate) continue;
                if (r.maxSampleRate > 0 && srcASampleRate > r.maxSampleRate) continue;
                if (r.minSampleRate > 0 && srcASampleRate < r.minSampleRate) continue;
            }
            a = i;
            break;
        }
        if (a < 0 || forceTranscode != 0) {
            a = VORNAK_TRANSCODE;
            transcoding = true;
        }
        for (;;) {
            *pAudioIndex = a;
            const TANASCODE_FORMAT_MAPPING_ST *formats = audio[a & 255].pFormatTable;
            if (!formats) {
                result = VORNAK_NO_TABLE;
                break;
            }
            int f = -1;
            if (preferFormatId > 0)
                for (int i = 0; i < kMaxRules && formats[i].formatId != -1; ++i)
                    if (isSame(formats[i].formatId, preferFormatId)) {
                        f = i;
                        break;
                    }
            if (f < 0 && transcoding) f = 0;
            if (f < 0)
                for (int i = 0; i < kMaxRules && formats[i].formatId != -1; ++i)
                    if ((formats[i].formatId & 0xFFFF) == 0 ||
                        isSame(formats[i].formatId, srcFormatId)) {
                        f = i;
                        break;
                    }
            result = VORNAK_DECIDED;
            if (forceTranscode != 0 || f < 0) {
                f = VORNAK_TRANSCODE;
            } else if (transcoding && formats[f].nonSeekable == 1) {
                f = VORNAK_TRANSCODE;
                if (formats[0].nonSeekable == 1) result = VORNAK_NONSEEKABLE;
            }
            *pFormatIndex = f;
            const TANASCODE_FORMAT_MAPPING_ST &used = formats[f & 255];
            if (pMime) *pMime = used.mime;
            if (pPN) *pPN = used.pn;
            if (pDstFormatId) *pDstFormatId = used.formatId == 0 ? srcFormatId : used.formatId;
            if (f == VORNAK_TRANSCODE && formats[0].noTranscode == 1) result = VORNAK_NOT_ALLOWED;
            if (result != VORNAK_NOT_ALLOWED || *pAudioIndex == VORNAK_TRANSCODE) break;
            a = VORNAK_TRANSCODE;
            transcoding = true;
        }
    }
    const bool transcodes = *pVideoIndex >= VORNAK_TRANSCODE || *pAudioIndex >= VORNAK_TRANSCODE ||
                            *pFormatIndex >= VORNAK_TRANSCODE;
    if (videoRule.noTranscode == 1 && transcodes) {
        if (pDstFormatId) *pDstFormatId = srcFormatId;
        if (pPN) *pPN = nullptr;
        if (pMime) *pMime = nullptr;
        return VORNAK_NOT_ALLOWED;
    }
    if (result != VORNAK_DECIDED) return result;
    return transcodes ? VORNAK_DECIDED : VORNAK_KEPT;
}

} // namespace vornak::bench

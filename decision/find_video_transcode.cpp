#include "rule_index.h"
#include "video_comparisons.h"
#include "vornak.h"

#include "base/debug_line.h"

namespace vornak {
namespace {

bool matches(const VideoRule &rule, const VideoSource &source, int index)
{
    if (rule.vCodecId == kAnyCodec) return true;
    if (rule.vCodecId != source.codecId) return false;
    const int refusal = findRefusal<s_VideoComparisons>(rule, source);
    if (refusal == kPlayException)
        VORNAK_DEBUG("FindVideoTranscode",
                     "srcVCodecFlag=%d match play exception, so we still need to transcode it, "
                     "i=%d",
                     source.codecFlag, index);
    return refusal < 0;
}

/// Position of the first rule that takes the source, or kNoRule: the profile's order breaks ties.
int findVideoRule(const VideoRule *table, const VideoSource &source)
{
    for (int i = 0; i < kMaxRules && table[i].vCodecId != kEndOfTable; ++i)
        if (matches(table[i], source, i)) return i;
    return kNoRule;
}

} // namespace
} // namespace vornak

int FindVideoTranscode(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId, int srcVProfileId,
                       int srcVLevel, int srcWidth, int srcHeight, int srcVBitrate, int srcACodecId,
                       int srcAProfileId, int srcALevel, int srcAChannels, int srcABitrate,
                       int srcASampleRate, int srcFormatId, int *pVideoIndex, int *pAudioIndex,
                       int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
                       int preferFormatId, int matchVideo, int forceTranscode, int assignTrack,
                       int srcVCodecFlag)
{
    using namespace vornak;
    if (!pVideoTable || !pVideoIndex || !pAudioIndex || !pFormatIndex) return VORNAK_NO_TABLE;

    if (matchVideo == 1)
        *pVideoIndex = findVideoRule(pVideoTable, {srcVCodecId, srcVProfileId, srcVLevel, srcWidth,
                                                   srcHeight, srcVBitrate, srcVCodecFlag});
    else
        *pVideoIndex = pVideoTable[0].vCodecId == kEndOfTable ? kNoRule : 0;
    VORNAK_DEBUG_BOLD("FindVideoTranscode", "*pVideoIndex=%d, assignTrack=%d", *pVideoIndex,
                      assignTrack);

    int transcoding = 0;
    if (assignTrack != 0 || *pVideoIndex == kNoRule || forceTranscode != 0) {
        *pVideoIndex = kTranscode;
        transcoding = 1;
    }
    const VideoRule &rule = pVideoTable[positionOf(*pVideoIndex)];
    const int result = FindMusicTranscode(rule.pAudioTable, srcACodecId, srcAProfileId, srcALevel,
                                          srcAChannels, srcABitrate, srcASampleRate, srcFormatId,
                                          pAudioIndex, pFormatIndex, pMime, pPN, pDstFormatId,
                                          transcoding, preferFormatId, nullptr, forceTranscode);
    if (rule.noTranscode != 1) return result;
    if (!isTranscoded(*pVideoIndex) && !isTranscoded(*pAudioIndex) && !isTranscoded(*pFormatIndex))
        return result;

    if (pDstFormatId) *pDstFormatId = srcFormatId;
    if (pPN) *pPN = nullptr;
    if (pMime) *pMime = nullptr;
    VORNAK_DEBUG("FindVideoTranscode", "need to transcode, but result is %d, so ret = %d",
                 VORNAK_NOT_ALLOWED, VORNAK_NOT_ALLOWED);
    return VORNAK_NOT_ALLOWED;
}

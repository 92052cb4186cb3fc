#include "decision/find_video.h"

#include "base/debug_line.h"
#include "base/rule_tables.h"
#include "decision/container_agreement.h"

[[gnu::flatten]] int getVideoTranscodeIndex2(
    TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId, int srcVProfileId, int srcVLevel,
    int srcWidth, int srcHeight, int srcVBitrate, int srcACodecId, int srcAProfileId, int srcALevel,
    int srcAChannels, int srcABitrate, int srcASampleRate, int srcFormatId, int *pVideoIndex,
    int *pAudioIndex, int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
    int preferFormatId, int matchVideo, int forceTranscode, int assignTrack, int srcVCodecFlag)
{
    using namespace vornak;
    if (!pVideoTable || !pVideoIndex || !pAudioIndex || !pFormatIndex) return VORNAK_NO_TABLE;

    const int result = findVideo(
        pVideoTable,
        {srcVCodecId, srcVProfileId, srcVLevel, srcWidth, srcHeight, srcVBitrate, srcVCodecFlag},
        {srcACodecId, srcAProfileId, srcALevel, srcAChannels, srcABitrate, srcASampleRate},
        {foldMpegStreams(srcFormatId), preferFormatId, forceTranscode}, {matchVideo, assignTrack},
        pVideoIndex, {pAudioIndex, pFormatIndex, pMime, pPN, pDstFormatId});
    VORNAK_DEBUG_BOLD("getVideoTranscodeIndex2",
                      "ret=%d, *pVideoIndex=%d, *pAudioIndex=%d, *pFormatIndex=%d", result,
                      *pVideoIndex, *pAudioIndex, *pFormatIndex);
    if (result != VORNAK_DECIDED) return result;
    return isTranscoded(*pVideoIndex) || isTranscoded(*pAudioIndex) || isTranscoded(*pFormatIndex)
               ? VORNAK_DECIDED
               : VORNAK_KEPT;
}

int getVideoTranscodeIndex(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId,
                           int srcVProfileId, int srcVLevel, int srcWidth, int srcHeight,
                           int srcVBitrate, int srcACodecId, int srcAProfileId, int srcALevel,
                           int srcAChannels, int srcABitrate, int srcASampleRate, int srcFormatId,
                           int *pVideoIndex, int *pAudioIndex, int *pFormatIndex, char **pMime,
                           char **pPN, int *pDstFormatId, int matchVideo, int forceTranscode,
                           int assignTrack, int srcVCodecFlag)
{
    return getVideoTranscodeIndex2(pVideoTable, srcVCodecId, srcVProfileId, srcVLevel, srcWidth,
                                   srcHeight, srcVBitrate, srcACodecId, srcAProfileId, srcALevel,
                                   srcAChannels, srcABitrate, srcASampleRate, srcFormatId,
                                   pVideoIndex, pAudioIndex, pFormatIndex, pMime, pPN, pDstFormatId,
                                   0, matchVideo, forceTranscode, assignTrack, srcVCodecFlag);
}

#include "decision/find_music.h"

#include "base/rule_tables.h"

int getMusicTranscodeIndex2(TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int srcACodecId,
                            int srcAProfileId, int srcALevel, int srcAChannels, int srcABitrate,
                            int srcASampleRate, int srcFormatId, int *pAudioIndex,
                            int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
                            int preferFormatId, int *pIsWavPcm, int forceTranscode)
{
    using namespace vornak;
    if (!pAudioIndex || !pFormatIndex) return VORNAK_NO_TABLE;
    const int result = findMusic(
        pAudioTable,
        {srcACodecId, srcAProfileId, srcALevel, srcAChannels, srcABitrate, srcASampleRate},
        {srcFormatId, preferFormatId, forceTranscode}, false, pIsWavPcm,
        {pAudioIndex, pFormatIndex, pMime, pPN, pDstFormatId});
    if (result != VORNAK_DECIDED) return result;
    return isTranscoded(*pAudioIndex) || isTranscoded(*pFormatIndex) ? VORNAK_DECIDED : VORNAK_KEPT;
}

int getMusicTranscodeIndex(TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int srcACodecId,
                           int srcAProfileId, int srcALevel, int srcAChannels, int srcABitrate,
                           int srcASampleRate, int srcFormatId, int *pAudioIndex, int *pFormatIndex,
                           char **pMime, char **pPN, int *pDstFormatId)
{
    return getMusicTranscodeIndex2(pAudioTable, srcACodecId, srcAProfileId, srcALevel, srcAChannels,
                                   srcABitrate, srcASampleRate, srcFormatId, pAudioIndex,
                                   pFormatIndex, pMime, pPN, pDstFormatId, 0, nullptr, 0);
}

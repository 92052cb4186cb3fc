#include "decision/find_video.h"

#include "base/debug_line.h"
#include "base/rule_tables.h"
#include "decision/comparison.h"
#include "decision/find_music.h"

namespace vornak {
namespace {

bool matches(const VideoRule &rule, const VideoSource &source, int index)
{
    if (rule.vCodecId == kAnyCodec) return true;
    if (rule.vCodecId != source.codecId) return false;
    const int refusal = findRefusal<s_VideoComparisons>(rule, source);
    if (refusal < 0) return true;
    if (s_VideoComparisons[static_cast<std::size_t>(refusal)].first->bound == Bound::NotWithin)
        VORNAK_DEBUG("FindVideoTranscode",
                     "srcVCodecFlag=%d match play exception, so we still need to transcode it, "
                     "i=%d",
                     source.codecFlag, index);
    return false;
}

int findRule(const VideoRule *table, const VideoSource &source, int matchVideo)
{
    if (matchVideo != 1) return idOf(*table) == kEndOfTable ? kNoRule : 0;
    return findRecord(table, [&](const VideoRule &rule, int position) {
        return matches(rule, source, position);
    });
}

} // namespace

int findVideo(const VideoRule *table, const VideoSource &video, const AudioSource &audio,
              const Request &request, const VideoRequest &videoRequest, int *pVideoIndex,
              const Answer &answer)
{
    if (!table) return VORNAK_NO_TABLE;

    int index = findRule(table, video, videoRequest.matchVideo);
    VORNAK_DEBUG_BOLD("FindVideoTranscode", "*pVideoIndex=%d, assignTrack=%d", index,
                      videoRequest.assignTrack);

    const bool transcoding =
        videoRequest.assignTrack != 0 || index == kNoRule || request.forceTranscode != 0;
    if (transcoding) index = kTranscode;
    *pVideoIndex = index;
    const VideoRule &rule = table[positionOf(index)];
    const int result = findMusic(rule.pAudioTable, audio, request, transcoding, nullptr, answer);
    if (rule.noTranscode != 1) return result;
    if (!isTranscoded(*pVideoIndex) && !isTranscoded(*answer.audioIndex) &&
        !isTranscoded(*answer.formatIndex))
        return result;

    if (answer.dstFormatId) *answer.dstFormatId = request.srcFormatId;
    if (answer.pn) *answer.pn = nullptr;
    if (answer.mime) *answer.mime = nullptr;
    VORNAK_DEBUG("FindVideoTranscode", "need to transcode, but result is %d, so ret = %d",
                 VORNAK_NOT_ALLOWED, VORNAK_NOT_ALLOWED);
    return VORNAK_NOT_ALLOWED;
}

} // namespace vornak

int FindVideoTranscode(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId, int srcVProfileId,
                       int srcVLevel, int srcWidth, int srcHeight, int srcVBitrate, int srcACodecId,
                       int srcAProfileId, int srcALevel, int srcAChannels, int srcABitrate,
                       int srcASampleRate, int srcFormatId, int *pVideoIndex, int *pAudioIndex,
                       int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
                       int preferFormatId, int matchVideo, int forceTranscode, int assignTrack,
                       int srcVCodecFlag)
{
    if (!pVideoIndex || !pAudioIndex || !pFormatIndex) return VORNAK_NO_TABLE;
    return vornak::findVideo(
        pVideoTable,
        {srcVCodecId, srcVProfileId, srcVLevel, srcWidth, srcHeight, srcVBitrate, srcVCodecFlag},
        {srcACodecId, srcAProfileId, srcALevel, srcAChannels, srcABitrate, srcASampleRate},
        {srcFormatId, preferFormatId, forceTranscode}, {matchVideo, assignTrack}, pVideoIndex,
        {pAudioIndex, pFormatIndex, pMime, pPN, pDstFormatId});
}

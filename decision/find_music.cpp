#include "decision/find_music.h"

#include "base/debug_line.h"
#include "base/media_ids.h"
#include "base/rule_tables.h"
#include "decision/comparison.h"
#include "decision/find_format.h"

#include <algorithm>
#include <iterator>

namespace vornak {
namespace {

constexpr int s_PcmCodecs[] = {"pcm_s16le"_codec, "pcm_s16be"_codec, "pcm_s24le"_codec,
                               "pcm_s24be"_codec};

#define VORNAK_DEBUG_RULE(index, field, value)                                                     \
    VORNAK_DEBUG("FindMusicTranscode", " pAudioTable[%d].%s = %d", index, field, value)

template <class Before>
[[gnu::always_inline]] inline bool matches(const AudioRule &rule, const AudioSource &source,
                                           Before before)
{
    if (rule.aCodecId == kAnyCodec) return true;
    if (rule.aCodecId != source.codecId) return false;
    return findRefusal<s_AudioComparisons>(rule, source, before) < 0;
}

/// findRule() with a line for each value that is looked at.
[[gnu::cold, gnu::noinline]] int traceRules(const AudioRule *table, const AudioSource &source)
{
    return findRecord(table, [&](const AudioRule &rule, int index) {
        VORNAK_DEBUG_RULE(index, "aCodecId", rule.aCodecId);
        return matches(rule, source, [&](const AudioComparison &row) {
            VORNAK_DEBUG_RULE(index, row.first->name, row.first->in(rule));
        });
    });
}

int findRule(const AudioRule *table, const AudioSource &source)
{
    if (g_debug_level != 0) return traceRules(table, source);
    return findRecord(table, [&](const AudioRule &rule, int) {
        return matches(rule, source, [](const AudioComparison &) {});
    });
}

bool isPcm(int codecId)
{
    return std::find(std::begin(s_PcmCodecs), std::end(s_PcmCodecs), codecId) !=
           std::end(s_PcmCodecs);
}

} // namespace

int findMusic(const AudioRule *table, const AudioSource &source, const Request &request,
              bool transcoding, int *pIsWavPcm, const Answer &answer)
{
    if (!table) return VORNAK_NO_TABLE;

    VORNAK_DEBUG("FindMusicTranscode",
                 " srcACodecId = %d, srcAProfileId = %d, srcALevel = %d, srcAChannels = %d\n"
                 "srcABitrate = %d, srcASampleRate = %d, srcFormatId = %d",
                 source.codecId, source.profileId, source.level, source.channels, source.bitrate,
                 source.sampleRate, request.srcFormatId);
    int index = findRule(table, source);
    VORNAK_DEBUG("FindMusicTranscode", " pAudioIndex = %d", index);

    if (index == kNoRule || request.forceTranscode != 0) {
        index = kTranscode;
        transcoding = true;
    }
    for (bool again = false;; again = true) {
        // Read back below instead of remembered: a host that wants neither index may pass one
        // variable for both.
        *answer.audioIndex = index;
        int dstFormatId = 0;
        const int result =
            findFormat(table[positionOf(index)].pFormatTable, request, transcoding,
                       {nullptr, answer.formatIndex, answer.mime, answer.pn, &dstFormatId});
        const bool chosen = result != VORNAK_NO_TABLE;
        if (chosen && answer.dstFormatId) *answer.dstFormatId = dstFormatId;
        if (pIsWavPcm)
            *pIsWavPcm = chosen && isPcm(table[positionOf(*answer.audioIndex)].aCodecId) &&
                         dstFormatId == "wav"_container;
        if (result != VORNAK_NOT_ALLOWED || *answer.audioIndex == kTranscode || again)
            return result;

        // The stream fits, but no container does and none may be made: transcode it all.
        index = kTranscode;
        transcoding = true;
    }
}

} // namespace vornak

int FindMusicTranscode(TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int srcACodecId, int srcAProfileId,
                       int srcALevel, int srcAChannels, int srcABitrate, int srcASampleRate,
                       int srcFormatId, int *pAudioIndex, int *pFormatIndex, char **pMime,
                       char **pPN, int *pDstFormatId, int transcoding, int preferFormatId,
                       int *pIsWavPcm, int forceTranscode)
{
    if (!pAudioIndex || !pFormatIndex) return VORNAK_NO_TABLE;
    return vornak::findMusic(
        pAudioTable,
        {srcACodecId, srcAProfileId, srcALevel, srcAChannels, srcABitrate, srcASampleRate},
        {srcFormatId, preferFormatId, forceTranscode}, transcoding == 1, pIsWavPcm,
        {pAudioIndex, pFormatIndex, pMime, pPN, pDstFormatId});
}

// What a host asks of the chosen video rule and what lies under it.
#include "include/vornak.h"

#include "base/rule_tables.h"

int getVideoTranscodeOptions(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int videoIndex,
                             int audioIndex, int formatIndex, char **pVideoOption,
                             char **pAudioOption, char **pFormatOption)
{
    const auto *video = vornak::recordAt(pVideoTable, videoIndex);
    if (!video) return 1;
    if (pVideoOption) *pVideoOption = video->option;
    const auto *audio = vornak::recordAt(video->pAudioTable, audioIndex);
    if (!audio) return 1;
    if (pAudioOption) *pAudioOption = audio->option;
    const auto *entry = vornak::recordAt(audio->pFormatTable, formatIndex);
    if (!entry) return 1;
    if (pFormatOption) *pFormatOption = entry->option;
    return 0;
}

int getVideoTranscodeDLNAAttr(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int videoIndex,
                              int audioIndex, int formatIndex, char **pMime, char **pPN)
{
    const auto *video = vornak::recordAt(pVideoTable, videoIndex);
    if (!video) return 1;
    return getMusicTranscodeDLNAAttr(video->pAudioTable, audioIndex, formatIndex, pMime, pPN);
}

int getVideoTranscodeFrame(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int videoIndex)
{
    const auto *rule = vornak::recordAt(pVideoTable, videoIndex);
    return rule ? rule->frame : 0;
}

int isVideoSupportVATranscode(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int videoIndex)
{
    const auto *rule = vornak::recordAt(pVideoTable, videoIndex);
    return rule && rule->vaTranscode != 0 ? 1 : 0;
}

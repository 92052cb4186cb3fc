#include "include/vornak.h"

#include "base/rule_tables.h"

int getMusicTranscodeDLNAAttr(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int audioIndex,
                              int formatIndex, char **pMime, char **pPN)
{
    const auto *entry = vornak::entryAt(pAudioTable, audioIndex, formatIndex);
    if (!entry || !pMime || !pPN) return 1;
    *pMime = entry->mime;
    *pPN = entry->pn;
    return 0;
}

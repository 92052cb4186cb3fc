#include "cmdline/container_option.h"
#include "cmdline/option_text.h"
#include "cmdline/target_tag.h"
#include "include/vornak.h"

#include "base/fixed_text.h"
#include "base/rule_tables.h"

int getVideoTranscodeParams2(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int videoIndex,
                             int audioIndex, int formatIndex, char *option, char *tag,
                             int forceVideo, int defaultFormatId)
{
    using namespace vornak;
    if (!option) return 1;
    FixedText text(option, VORNAK_OPTION_TEXT_SIZE);
    const auto *video = recordAt(pVideoTable, videoIndex);
    if (!video) return 1;
    const auto *audio = recordAt(video->pAudioTable, audioIndex);
    if (!audio) return 1;
    const auto *entry = recordAt(audio->pFormatTable, formatIndex);
    if (!entry) return 1;
    const auto container = findContainerOption(*entry, defaultFormatId);
    if (!container) return 1;

    if (!text.append(orEmpty(container->option), " ",
                     videoOption(*video, videoIndex, forceVideo != 0), " ",
                     audioOption(*audio, audioIndex))) {
        text.clear();
        return 1;
    }
    return !tag || writeVideoTag(*video, *audio, container->formatId, tag) ? 0 : 1;
}

int getVideoTranscodeParams(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int videoIndex,
                            int audioIndex, int formatIndex, char *option, char *tag,
                            int forceVideo)
{
    return getVideoTranscodeParams2(pVideoTable, videoIndex, audioIndex, formatIndex, option, tag,
                                    forceVideo, 0);
}

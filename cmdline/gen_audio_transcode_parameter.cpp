#include "cmdline/limit_recording.h"
#include "include/vornak.h"

#include <cstdio>

namespace vornak {
namespace {

void recordAudioLimits(const AudioRule &rule, const AudioSource &source,
                       TRANSCODE_CONSTRAINT_ST &set)
{
    for (const auto &limit : s_AudioLimits) {
        const AudioProperty &property = *limit.comparison.first;
        if (recordLimit(limit, rule, source, set))
            std::fprintf(stderr, "param = %s, %s = %d\n", set.value[limit.slot], property.name,
                         property.in(rule));
    }
}

} // namespace
} // namespace vornak

int genAudioTranscodeParameter(int audioIndex, const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable,
                               const int srcProperty[6], TRANSCODE_CONSTRAINT_ST *set)
{
    using namespace vornak;
    std::fprintf(stderr, "index i = %d\n", positionOf(audioIndex));
    const AudioRule *rule = recordAt(pAudioTable, audioIndex);
    if (!rule || !srcProperty || !set) return 1;

    const AudioSource source = {srcProperty[0], srcProperty[1], srcProperty[2],
                                srcProperty[3], srcProperty[4], srcProperty[5]};
    std::fprintf(stderr, "src codecId = %d, config codecId = %d\n", source.codecId, rule->aCodecId);
    noteProfileAndLevel<s_AudioComparisons>(*rule, source, "genAudioTranscodeParameter");
    recordAudioLimits(*rule, source, *set);
    return 0;
}

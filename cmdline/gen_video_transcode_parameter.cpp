#include "cmdline/limit_recording.h"
#include "include/vornak.h"

#include <cstdio>

int genVideoTranscodeParameter(int videoIndex, const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                               const int srcProperty[6], TRANSCODE_CONSTRAINT_ST *set)
{
    using namespace vornak;
    std::fprintf(stderr, "index i = %d\n", positionOf(videoIndex));
    const VideoRule *rule = recordAt(pVideoTable, videoIndex);
    if (!rule || !srcProperty || !set) return 1;

    constexpr int kNoPlayExceptions = 0;
    const VideoSource source = {srcProperty[0], srcProperty[1], srcProperty[2],   srcProperty[3],
                                srcProperty[4], srcProperty[5], kNoPlayExceptions};
    noteProfileAndLevel<s_VideoComparisons>(*rule, source, "genVideoTranscodeParameter");
    for (const auto &limit : s_VideoLimits) recordLimit(limit, *rule, source, *set);
    return 0;
}

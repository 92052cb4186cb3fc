#include "cmdline/limit_recording.h"
#include "include/vornak.h"

#include "base/rule_tables.h"
#include "decision/video_comparisons.h"

namespace vornak {
namespace {

constexpr LimitSlot s_VideoLimits[] = {
    {kMaxSize, kSlotMaxSize},
    {kMinSize, kSlotMinSize},
    {kMaxVideoBitrate, kSlotMaxVideoBitrate},
    {kMinVideoBitrate, kSlotMinVideoBitrate},
};

} // namespace
} // namespace vornak

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
    noteProfileAndLevel(s_VideoComparisons[kVideoProfile], s_VideoComparisons[kVideoLevel], *rule,
                        source, "genVideoTranscodeParameter");
    for (const LimitSlot &limit : s_VideoLimits)
        recordLimit(s_VideoComparisons[limit.row], *rule, source, limit.slot, *set);
    return 0;
}

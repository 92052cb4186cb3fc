// What a video rule compares with a source, in order; the first row that refuses ends the rule.
#pragma once

#include "base/rule_tables.h"
#include "decision/comparison.h"

namespace vornak {

/// The properties of a video stream, in the order in which hosts pass them.
struct VideoSource {
    int codecId, profileId, level, width, height, bitrate;
    int codecFlag; ///< play-exception bits
};

using VideoComparison = Comparison<VideoRule, VideoSource>;

enum VideoRow {
    kPlayException,
    kVideoProfile,
    kVideoLevel,
    kMaxSize,
    kMinSize,
    kMaxVideoBitrate,
    kMinVideoBitrate,
    kVideoRows
};

inline constexpr VideoComparison s_VideoComparisons[kVideoRows] = {
    {Bound::NotWithin, "playException", &VideoRule::playException, &VideoSource::codecFlag},
    {Bound::Within, "vProfileId", &VideoRule::vProfileId, &VideoSource::profileId},
    {Bound::AtMost, "vLevel", &VideoRule::vLevel, &VideoSource::level},
    {Bound::AtMost, "maxWidth", &VideoRule::maxWidth, &VideoSource::width, //
     "maxHeight", &VideoRule::maxHeight, &VideoSource::height, &VideoRule::tolerance},
    {Bound::AtLeast, "minWidth", &VideoRule::minWidth, &VideoSource::width, //
     "minHeight", &VideoRule::minHeight, &VideoSource::height, &VideoRule::tolerance},
    {Bound::AtMost, "maxBitrate", &VideoRule::maxBitrate, &VideoSource::bitrate},
    {Bound::AtLeast, "minBitrate", &VideoRule::minBitrate, &VideoSource::bitrate},
};

} // namespace vornak

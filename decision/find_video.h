// The whole decision for a video file.
#pragma once

#include "base/rule_facts.h"
#include "decision/request.h"

namespace vornak {

/// What a video file's decision is asked beyond the request that its audio shares.
struct VideoRequest {
    int matchVideo;  // 1: match the video stream; else take rule 0
    int assignTrack; // not 0: transcode the video
};

/// FindVideoTranscode() for a table that may be null.
int findVideo(const VideoRule *table, const VideoSource &video, const AudioSource &audio,
              const Request &request, const VideoRequest &videoRequest, int *pVideoIndex,
              const Answer &answer);

} // namespace vornak

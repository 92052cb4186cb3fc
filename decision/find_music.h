// The audio step of a decision.
#pragma once

#include "base/rule_facts.h"
#include "decision/request.h"

namespace vornak {

/// FindMusicTranscode() for a table that may be null; `transcoding` is true for its 1.
int findMusic(const AudioRule *table, const AudioSource &source, const Request &request,
              bool transcoding, int *pIsWavPcm, const Answer &answer);

} // namespace vornak

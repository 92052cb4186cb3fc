// Audio for a video that has none: the library decides about videos with audio only.
#pragma once

#include "base/rule_facts.h"

namespace vornak::tool {

/**
 * Properties of audio that leads the library to the first audio rule whose containers accept
 * the file; or to rule 0, if there is no such rule. What the library then says of the audio is
 * void, what it says of the container holds.
 * @param table     the audio rules of the chosen video rule; not empty
 * @param formatId  the file's container, as the library matches it for videos
 */
AudioSource standInAudio(const AudioRule *table, int formatId);

} // namespace vornak::tool

// The play exceptions of a rule. A rule turns a source away only when it has at least one oddity
// and all that it has are in the rule's list. So a list has to name, beside what is refused, all
// that a source may have together with it; and that turns away sources with those alone.
#pragma once

#include "tools/import/player.h"

#include <vector>

namespace vornak::tool {

/// The list by which a rule takes no source with any oddity in `limits.refused`.
int playExceptions(const PictureLimits &limits);

/// What a source can have that turns it away although it isn't refused.
int alsoTurnedAway(const PictureLimits &limits);

/// Whether it is for Dolby Vision's sake that the list has to name other things.
bool isForDolbyVision(const PictureLimits &limits);

/// The limits without what they say of Dolby Vision.
PictureLimits withoutDolbyVision(const PictureLimits &limits);

/// The list of a rule that takes nothing but what has Dolby Vision, or nothing odd.
int allButDolbyVision();

/// The limits in two parts where some profiles can't have what is refused: the rule for those
/// needn't turn away anything else.
std::vector<PictureLimits> splitByOddities(const PictureLimits &limits);

} // namespace vornak::tool

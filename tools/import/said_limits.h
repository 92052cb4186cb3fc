// What rules can say of sample rates and of the oddities of a picture.
#pragma once

#include "tools/import/limits.h"

#include <functional>
#include <vector>

namespace vornak::tool {

/// The union as rules can say it: with the usual sample rates.
Union withSayableRates(const Union &all, const Note &note);

/// The levels of a codec that are taken, of which a rule says the highest. The codec's are known.
Union levelsWhere(const std::function<bool(int level)> &isTaken, int codec, const Note &note);

/// What progressive and interlaced pictures are taken. @param otherwise  what comes of it if the
/// former aren't
Union interlacingWhere(bool takesProgressive, bool takesInterlaced, const char *otherwise,
                       const Note &note);

/// All but pictures with one of the oddities, which bars separate.
Union refusing(const char *oddities);

/// Whether streams of the codec can have a sample rate between the two.
bool hasRateBetween(int codec, int above, int below);

/// The list by which a rule takes no source with any oddity in `limits.refused`.
int playExceptions(const Limits &limits);

/// What a source can have that turns it away although it isn't refused.
int alsoTurnedAway(const Limits &limits);

/// Whether it is for Dolby Vision's sake that the list has to name other things.
bool isForDolbyVision(const Limits &limits);

/// The limits without what they say of Dolby Vision.
Limits withoutDolbyVision(const Limits &limits);

/// The list of a rule that takes nothing but what has Dolby Vision, or nothing odd.
int allButDolbyVision();

/// The limits in two parts where some profiles can't have what is refused: the rule for those
/// needn't turn away anything else.
std::vector<Limits> splitByOddities(const Limits &limits);

/// Tells what else rules turn away on account of what is refused.
void noteOddities(const Limits &limits, const Note &note);

} // namespace vornak::tool

// Sample rates as rules can limit them: by those of the loader's list, to which it moves others.
#pragma once

#include "tools/import/player.h"

#include <optional>

namespace vornak::tool {

struct SayableRates {
    Range range;
    bool isExact; ///< whether no rate that files have is lost
};

/// The widest range that the list can say and that lies within `rates`; nothing: there is none.
std::optional<SayableRates> sayableRates(Range rates);

/// Whether streams of the codec can have a sample rate between the two.
bool hasRateBetween(int codec, int above, int below);

} // namespace vornak::tool

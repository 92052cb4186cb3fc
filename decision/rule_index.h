// How a rule is named between the library and its host.
#pragma once

#include "include/vornak.h"

namespace vornak {

constexpr int kEndOfTable = -1;              // the id that ends a rule table
constexpr int kAnyCodec = 0;                 // the id of a rule that takes every codec
constexpr int kTranscode = VORNAK_TRANSCODE; // index: transcode, as the rule at position 0 says
constexpr int kMaxRules = kTranscode;        // positions that an index can name
constexpr int kNoRule = -1;                  // an index while the search runs

/// The position that an index names, with or without the transcode flag.
constexpr int positionOf(int index)
{
    return index & (kMaxRules - 1);
}

/// Whether an index that a host hands back carries the transcode flag.
constexpr bool isTranscoded(int index)
{
    return index >= kTranscode;
}

} // namespace vornak

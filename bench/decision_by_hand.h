// What the library's decision is judged by: a second statement of the rules.
#pragma once

#include "include/vornak.h"

namespace vornak::bench {

/// getVideoTranscodeIndex2() in one function of plain branches, with all that its results depend
/// on: the table's rules compared as they stand, nothing shared, nothing traced.
decltype(getVideoTranscodeIndex2) decideByHand;

} // namespace vornak::bench

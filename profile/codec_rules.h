// The audio rules below one element, with their containers.
#pragma once

#include "include/vornak.h"
#include "include/vornak_host.h"

namespace vornak {

/// Builds the table of `parent`'s ACODEC elements. Throws when out of memory; what was built
/// by then is in *table.
/// @return 0, or 1 when there is no such element; *table then stays as it is
int parseCodecRules(TRANSCODE_AUDIO_MAPPING_ST **table, const XMLNode &parent);

} // namespace vornak

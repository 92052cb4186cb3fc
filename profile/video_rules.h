// The video rules of a profile, with their audio rules.
#pragma once

#include "include/vornak.h"
#include "include/vornak_host.h"

namespace vornak {

/// Builds the table of `section`'s VCODEC elements; without one *table stays as it is. Throws
/// when out of memory; what was built by then is in *table.
void parseVideoRules(TRANSCODE_VIDEO_MAPPING_ST **table, const XMLNode &section);

} // namespace vornak

// The container step of a decision.
#pragma once

#include "decision/request.h"
#include "include/vornak.h"

namespace vornak {

/// FindFormatTranscode() for a table that may be null; `transcoding` is true for its 1.
int findFormat(const TANASCODE_FORMAT_MAPPING_ST *table, const Request &request, bool transcoding,
               const Answer &answer);

} // namespace vornak

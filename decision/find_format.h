// The container step of a decision.
#pragma once

#include "base/rule_tables.h"
#include "decision/request.h"

namespace vornak {

/// FindFormatTranscode() for a table that may be null; `transcoding` is true for its 1.
int findFormat(const ContainerEntry *table, const Request &request, bool transcoding,
               const Answer &answer);

} // namespace vornak

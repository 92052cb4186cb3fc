// All media probed into lines, by all cores, in their order.
#pragma once

#include "tools/files/media_list.h"

#include <cstddef>
#include <functional>
#include <string_view>

namespace vornak::tool {

class ProbedLinesFile;

struct ProbeTotals {
    std::size_t files = 0;
    std::size_t known = 0; ///< whose line was there
    std::size_t failed = 0;
};

/**
 * Says on standard error which files can't be probed, and shows how far it has come.
 * @param known  lines that may still hold; null: none
 * @param write  takes the lines, one at a time, and whether they are new
 */
ProbeTotals probeFiles(const MediaNames &media, ProbedLinesFile *known,
                       const std::function<void(std::string_view line, bool isNew)> &write);

} // namespace vornak::tool

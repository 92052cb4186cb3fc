// Which container an output goes into: the one that the chosen entry names, or the default.
#pragma once

#include "include/vornak.h"

#include <optional>

namespace vornak {

struct ContainerOption {
    const char *option; ///< the profile's text may be null
    int formatId;
};

/// Nothing: the entry names no container, and there is no option for the default one.
std::optional<ContainerOption> findContainerOption(const TANASCODE_FORMAT_MAPPING_ST &entry,
                                                   int defaultFormatId);

} // namespace vornak

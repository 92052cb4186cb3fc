// What was found, as people and programs read it.
#pragma once

#include "tools/check/finding.h"

#include <array>
#include <string>
#include <vector>

namespace vornak::tool {

struct CheckedProfile {
    std::string path;
    std::vector<Finding> findings; ///< that are to be shown
    std::string error;             ///< why it can't be loaded, with its place; empty: it was
    std::array<int, 3> found{};    ///< findings of each severity, shown or not
};

std::array<int, 3> countSeverities(const std::vector<Finding> &findings);

using FindingFormat = std::string (*)(const std::vector<CheckedProfile> &profiles);

/// A finding in two lines, coloured, and the sum of each profile.
std::string findingsAsText(const std::vector<CheckedProfile> &profiles);

/// A finding in one line, as compilers write it.
std::string findingsAsGcc(const std::vector<CheckedProfile> &profiles);

/// One document: of the profile, or of the list where there isn't one alone.
std::string findingsAsJson(const std::vector<CheckedProfile> &profiles);

/// A log of the Static Analysis Results Interchange Format, 2.1.0.
std::string findingsAsSarif(const std::vector<CheckedProfile> &profiles);

} // namespace vornak::tool

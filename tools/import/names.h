// Lists of codecs and containers, for players that take any, or all but some.
#pragma once

#include "tools/import/names.h"

#include <string>
#include <vector>

namespace vornak::tool {

std::vector<int> commonPictures();
std::vector<int> commonSounds();

/// All containers, those with subtypes in place of the containers that have them.
std::vector<int> allContainers();

/// The ids for a container's name: MP4 without a further word means its general brands. None: the
/// name isn't known.
std::vector<int> containersNamed(const std::string &name);

} // namespace vornak::tool

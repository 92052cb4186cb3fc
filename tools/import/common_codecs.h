// Where a profile takes any codec but for some, those that files are likely to have.
#pragma once

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

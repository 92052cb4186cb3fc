// Levels as people write them and as streams code them.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace vornak::tool {

/// The levels of the codec, rising, as its streams code them; empty: they have no known order.
std::span<const int> knownLevels(int codec);

/// What a stream says for a level such as "4.1"; nothing: the codec has no such level.
std::optional<int> codedLevel(int codec, const std::string &level);

} // namespace vornak::tool

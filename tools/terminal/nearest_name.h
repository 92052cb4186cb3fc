// "Did you mean": the known name that a mistyped one is nearest to.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// The nearest of `known`, the earlier on a tie, in any letter case; none when even that differs
/// in more than a third of the letters.
std::optional<std::string> nearestName(std::string_view word,
                                       const std::vector<std::string> &known);

/// "; did you mean NAME?", or the empty text.
std::string didYouMean(std::string_view word, const std::vector<std::string> &known);

/// The same, but all names when none is near; for lists that fit on a screen.
std::string nearestOrAll(std::string_view word, const std::vector<std::string> &known);

} // namespace vornak::tool

// The appliance's add-on registry. Only its configuration query tool reads it.
#pragma once

#include <cstddef>
#include <string_view>

namespace vornak {

constexpr std::size_t kRegistryLineSize = 1024; ///< longer lines are cut

/// Runs the query tool and reads the first line that it prints, without its line end. `section`
/// and `key` reach the command interpreter as they are: plain names only. False: the command
/// would be too long, the tool can't be run, or it prints nothing.
[[nodiscard]] bool queryAddonRegistry(std::string_view section, std::string_view key,
                                      char (&line)[kRegistryLineSize]);

} // namespace vornak

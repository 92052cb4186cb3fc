// Work that must not be broken off half-way.
#pragma once

#include <functional>
#include <string>

namespace vornak::tool {

/**
 * Runs `work` in a process of its own and returns what it returns. Ctrl-C reaches neither that
 * process nor those that it starts; here, the signals that end the tool wait until it has ended.
 * Throws std::runtime_error when it came to no end. For a tool of one thread.
 */
std::string runShielded(const std::function<std::string()> &work);

} // namespace vornak::tool

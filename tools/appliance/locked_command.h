// A program that runs while the database lock is held.
#pragma once

#include <string>
#include <vector>

namespace vornak::tool {

/// Waits for the lock, runs `command` (the program first, looked up in PATH) and gives the lock
/// back, however the program ends. Signals sent to the tool meanwhile go on to the program.
/// Returns its exit status, or 128 and the signal that ended it or the wait; 127 for a program
/// that isn't there, 126 for one that can't be run. Throws where the lock can't be opened.
int runLocked(const std::vector<std::string> &command);

} // namespace vornak::tool

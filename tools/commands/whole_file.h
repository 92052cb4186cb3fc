// A text file that appears whole or not at all.
#pragma once

#include <string>

namespace vornak::tool {

class OutputPlace;

/// Throws a line for the user, and then the file is as before.
/// @param mode  of the file; 0: as new files have it
void writeWholeFile(const std::string &text, const OutputPlace &place, unsigned mode = 0);

} // namespace vornak::tool

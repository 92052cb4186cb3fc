// What may stand in place of the last word of a command line that is being typed.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vornak::tool {

/// Candidates for the last word, a line each, with what they mean behind a tab; and the line
/// ":files" where the name of a file may stand as well, of one ending alone if it says ":files
/// .xml".
/// @param words  all that was typed behind the program's name; the last one is begun, or empty
std::string completionsOf(const CLI::App &app, std::vector<std::string> words);

} // namespace vornak::tool

// The whole tool, from the words of the command line to the exit status.
#pragma once

namespace vornak::tool {

/// Throws what is derived from std::exception, with a line for the user.
int runVornak(int argc, char **argv);

} // namespace vornak::tool

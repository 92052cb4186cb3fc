// The words of the command line on their way into the parser, and its complaints out of it.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace vornak::tool {

/// Lets `app` parse the words. What follows "--" is an argument whatever it looks like, also
/// where arguments stand before it. Throws what CLI::App::parse() throws.
void parseCommandLine(CLI::App &app, int argc, char **argv);

/// Adds --color, which decides about colours().
void addColourOption(CLI::App &command);

/// A parser's error in one line that says what to do.
std::string describeUsageError(const CLI::App &app, const CLI::ParseError &error);

} // namespace vornak::tool

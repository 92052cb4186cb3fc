// The words of the command line on their way into the parser, and its complaints out of it.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace vornak::tool {

/// Keeps the help of `app` and of the subcommands added later to what their options do.
void useShortHelp(CLI::App &app);

/// Lets `app` parse the words. What follows "--" is an argument whatever it looks like, also
/// where arguments stand before it. Throws what CLI::App::parse() throws.
void parseCommandLine(CLI::App &app, int argc, char **argv);

/// Adds --color, which decides about colours().
void addColourOption(CLI::App &command);

/// Adds an option that may be repeated. Each takes one word, and leaves what follows to others.
CLI::Option *addRepeatable(CLI::App &command, const std::string &name,
                           std::vector<std::string> &values, const std::string &help);

/// A parser's error in one line that says what to do.
std::string describeUsageError(const CLI::App &app, const CLI::ParseError &error);

} // namespace vornak::tool

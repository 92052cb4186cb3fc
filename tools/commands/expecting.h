// --save-expectation and --expect of the commands that decide.
#pragma once

#include "tools/collection/matrix.h"

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace vornak::tool {

struct ExpectingOptions {
    std::string save, expect; ///< files; empty: not asked for

    bool isAsked() const { return !save.empty() || !expect.empty(); }
};

/// @param others  the options that ask for another form of output
void addExpectingOptions(CLI::App &command, ExpectingOptions &options,
                         const std::vector<CLI::Option *> &others);

/// Saves what is decided, or compares it. Returns the exit status. Throws std::runtime_error.
int runExpecting(const ExpectingOptions &options, const std::vector<MatrixColumn> &columns,
                 const DecisionRequest &request, const MediaNames &media);

} // namespace vornak::tool

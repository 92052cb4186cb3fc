// The examples of a page of the documentation.
#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace vornak::test {

struct DocExample {
    std::string command, output;
};

/// The page's indented commands, after "$ ", each with what stands below it.
inline std::vector<DocExample> readDocExamples(const std::string &page)
{
    std::vector<DocExample> examples;
    std::ifstream file(page);
    bool inOutput = false;
    std::string blankLines; // which belong to an output that goes on after them
    for (std::string line; std::getline(file, line);) {
        if (inOutput && line.empty()) {
            blankLines += '\n';
            continue;
        }
        const bool isIndented = line.starts_with("    ");
        inOutput = inOutput && isIndented;
        if (line.starts_with("    $ ")) {
            examples.push_back({line.substr(6), ""});
            inOutput = true;
        } else if (inOutput) {
            examples.back().output += blankLines + line.substr(4) + "\n";
        }
        blankLines.clear();
    }
    return examples;
}

} // namespace vornak::test

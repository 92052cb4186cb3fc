// The examples of a page of the documentation.
#pragma once

#include "tests/support/process.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::test {

struct DocExample {
    std::string command, output;
};

/// The page's indented commands, after "$ " and "> ", each with what stands below it.
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
        } else if (inOutput && line.starts_with("    >") && examples.back().output.empty()) {
            examples.back().command += "\n" + line.substr(std::min<std::size_t>(6, line.size()));
        } else if (inOutput) {
            examples.back().output += blankLines + line.substr(4) + "\n";
        }
        blankLines.clear();
    }
    return examples;
}

/// Whether `output` is what a page shows; a line "…" there stands for any lines.
inline bool isShown(std::string_view output, std::string_view shown)
{
    constexpr std::string_view kAnyLines = "…\n";
    const std::size_t gap = shown.find(kAnyLines);
    if (gap == std::string_view::npos) return output == shown;
    if (!output.starts_with(shown.substr(0, gap))) return false;
    output.remove_prefix(gap);
    shown.remove_prefix(gap + kAnyLines.size());
    while (!isShown(output, shown)) {
        const std::size_t end = output.find('\n');
        if (end == std::string_view::npos) return false;
        output.remove_prefix(end + 1);
    }
    return true;
}

/// Behind a command, shows its status in brackets where that isn't 0.
inline const std::string kShowStatus = "status=$?; [ $status = 0 ] || echo \"[$status]\"";

/// Runs the commands in one shell, one after the other, and compares what they print.
/// @param prologue  what the shell does first
/// @param end       what it does behind each
/// @param runShell  runs a script, elsewhere than here
inline void expectDocExamples(
    const std::vector<DocExample> &examples, const std::string &prologue,
    const std::string &end = {},
    const std::function<ProcessResult(const std::string &)> &runShell =
        [](const std::string &script) {
            return run({"sh", "-c", script});
        })
{
    constexpr std::string_view kEnd = "\f\n";
    const std::string mark = "\nprintf '\\f\\n'\n";
    std::string script = "exec 2>&1 </dev/null\n" + prologue + mark;
    for (const DocExample &example : examples)
        script.append(example.command).append("\n").append(end).append(mark);
    const std::string printed = runShell(script).out;
    std::size_t from = printed.find(kEnd);
    EXPECT_EQ(printed.substr(0, from), "");
    for (const DocExample &example : examples) {
        if (from == std::string::npos) break;
        from += kEnd.size();
        const std::size_t end = printed.find(kEnd, from);
        const std::string output = printed.substr(from, end - from);
        EXPECT_TRUE(isShown(output, example.output)) << "$ " << example.command << "\nprinted\n"
                                                     << output << "not\n"
                                                     << example.output;
        from = end;
    }
    EXPECT_NE(from, std::string::npos) << printed;
}

} // namespace vornak::test

// The manual pages in docs/man name what there is: commands, options, functions, attributes. The
// pages for those who write a server show what happens.
#include "tests/support/doc_examples.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"
#include "tools/check/schema.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

namespace vornak::test {
namespace {

using testing::HasSubstr;
using Names = std::set<std::string>;

const std::string kSources = VORNAK_SOURCE_DIR;

std::string textOf(const std::string &path)
{
    std::ifstream file(kSources + "/" + path);
    std::stringstream text;
    text << file.rdbuf();
    EXPECT_FALSE(text.str().empty()) << path << " is missing";
    return text.str();
}

/// The first group of each match.
Names matches(const std::string &text, const char *pattern)
{
    const std::regex regex(pattern);
    Names names;
    for (std::sregex_iterator i(text.begin(), text.end(), regex), end; i != end; ++i)
        names.insert((*i)[1]);
    return names;
}

/// What the tool completes behind these words: subcommands, or options where the last is "--".
Names completed(std::vector<std::string> words)
{
    words.insert(words.begin(), {VORNAK_CLI, "--complete"});
    return matches("\n" + run(words).out, "\n([^\t\n]+)\t");
}

TEST(Manual, NamesTheOptionsOfEachCommand)
{
    const Names commands = completed({""});
    EXPECT_EQ(matches(textOf("docs/man/vornak.1.scd"), "\\*vornak-([a-z]+)\\*\\(1\\)\n\t"),
              commands);
    for (const std::string &command : commands) {
        const std::string page = "docs/man/vornak-" + command + ".1.scd";
        const std::string text = textOf(page);
        Names options = completed({command, "--"});
        for (const std::string &sub : completed({command, ""})) {
            EXPECT_THAT(text, HasSubstr("\n*" + sub + "*\n\t")) << page;
            options.merge(completed({command, sub, "--"}));
        }
        EXPECT_EQ(matches(text, "\n\\*(?:-.\\*, \\*)?(--[a-z-]+)\\*"), options) << page;
    }
}

TEST(Manual, NamesEachFunctionOfTheLibraryAndItsHost)
{
    const std::string page = textOf("docs/man/vornak.3.scd");
    for (const char *map : {"vornak.map", "platform/platform.map"}) {
        const Names names = matches(textOf(map), "\n +(?:_Z\\d+)?([A-Za-z]\\w+?)(?:P\\d+\\w+)?;");
        EXPECT_GE(names.size(), 11U) << map;
        for (const std::string &name : names) EXPECT_THAT(page, HasSubstr("*" + name + "*")) << map;
    }
}

TEST(Manual, NamesEachAttributeOfAProfileAndShowsOne)
{
    const std::string page = textOf("docs/man/vornak-profile.5.scd");
    const std::string attributes = page.substr(page.find("# ATTRIBUTES"));
    for (const tool::AttributeRow &row : tool::attributeRows())
        EXPECT_TRUE(std::regex_search(
            attributes, std::regex("\n(\\*\\w+\\*, )*\\*" + std::string(row.name) + "\\*")))
            << row.name;
    const TempDir dir;
    const std::size_t start = page.find("<DEVICE");
    const std::string profile =
        dir.write("p.xml", page.substr(start, page.find("```", start) - start));
    EXPECT_EQ(run({VORNAK_CLI, "profile", "check", profile}).status, 0);
}

TEST(ServerPages, ShowWhatHappens)
{
    for (const std::string page : {"docs/decision.md", "docs/host.md"}) {
        const TempDir dir;
        const std::string text = textOf(page);
        const std::size_t start = text.find("<DEVICE");
        if (start != std::string::npos)
            dir.write("tv.xml", text.substr(start, text.find("```", start) - start));
        const std::string bin = std::filesystem::path(VORNAK_CLI).parent_path();
        const auto examples = readDocExamples(kSources + "/" + page);
        EXPECT_FALSE(examples.empty());
        expectDocExamples(examples, "cd " + std::string(dir.path()) + "; PATH=" + bin + ":$PATH");
    }
}

TEST(ServerPages, ShowThePictureThatIsDrawn)
{
    const ProcessResult drawn = run({"dot", "-Tsvg", kSources + "/docs/decision.dot"});
    EXPECT_EQ(drawn.out, textOf("docs/decision.svg")) << drawn.err << "draw it again with dot";
}

} // namespace
} // namespace vornak::test

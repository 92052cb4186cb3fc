#include "tools/terminal/shell_text.h"

#include "tests/support/process.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

std::string allBytes()
{
    std::string bytes;
    for (int c = 1; c < 256; ++c) bytes += static_cast<char>(c);
    return bytes;
}

const std::string kReversed = {'\xE2', '\x80', '\xAE'}; // the mark that reverses what follows

const std::vector<std::string> s_Words = {
    "",
    "plain",
    "-dash",
    "~",
    "two words",
    "it's",
    "'",
    "\"$HOME\" `id` $(id) ${x} * ? [a] {b,c} ! # ; & | < > ( ) \\ \\n %s",
    "line\nend\n",
    "\n",
    "\t\033[31mred\033[m\a",
    "\033\n",
    "f\xC3\xBCr \xE2\x82\xAC \xF0\x9F\x8E\xAC",
    "no text \xFF\xC3",
    kReversed + "reversed \xE2\x82\xAC",
    "\xC2\x9B-31m",
    allBytes(),
};

TEST(ShellText, IsReadBackAsItWas)
{
    for (const char *shell : {"sh", "bash"}) {
        std::vector<std::string> command = {"printf", "%s\\0"};
        command.insert(command.end(), s_Words.begin(), s_Words.end());
        const ProcessResult result = run({shell, "-c", tool::shellCommand(command)});
        std::string expected;
        for (const std::string &word : s_Words) expected.append(word) += '\0';
        EXPECT_EQ(result.out, expected) << shell;
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
    }
}

TEST(ShellText, HoldsNothingThatATerminalObeys)
{
    for (const char c : tool::shellCommand(s_Words))
        EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F));
    EXPECT_EQ(tool::shellCommand({"\xC2\x9B"}), "\"$(printf '\\302\\233')\"");
    EXPECT_EQ(tool::shellCommand({kReversed}), "\"$(printf '\\342\\200\\256')\"");
    EXPECT_EQ(tool::shellCommand({"ffmpeg", "-vf", "scale=2:(1+1)", "f\xC3\xBCr"}),
              "ffmpeg -vf 'scale=2:(1+1)' 'f\xC3\xBCr'");
}

} // namespace
} // namespace vornak::test

#include "tools/terminal/command_line.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

/// A command line of the same shape as the tool's: parses the words and returns the subcommand's
/// arguments, or the error's line.
std::string parsed(std::vector<std::string> words)
{
    CLI::App app{"test"};
    app.require_subcommand(1);
    CLI::App *decide = app.add_subcommand("decide", "");
    std::string profile;
    std::pair<std::string, std::string> tags;
    std::vector<std::string> media;
    decide->add_option("--tags", tags, "");
    std::vector<std::string> repeated;
    tool::addRepeatable(*decide, "--more", repeated, "");
    decide->add_option("--profile", profile, "")->required();
    decide->add_option("MEDIA", media, "")->required();
    app.add_subcommand("profile", "")->add_subcommand("show", "");

    words.insert(words.begin(), "vornak");
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    try {
        tool::parseCommandLine(app, static_cast<int>(argv.size()), argv.data());
    } catch (const CLI::ParseError &error) {
        return tool::describeUsageError(app, error);
    }
    std::string all;
    for (const std::string &name : media) all += '[' + name + ']';
    for (const std::string &name : repeated) all += '<' + name + '>';
    return all;
}

TEST(CommandLine, TakesAnythingAfterTwoDashes)
{
    const struct {
        std::vector<std::string> words;
        const char *result;
    } cases[] = {
        {{"decide", "--profile", "p", "a", "-", "--", "-z"}, "[a][-][-z]"},
        {{"decide", "--profile", "p", "--", "--profile", "--", "profile"},
         "[--profile][--][profile]"},
        {{"decide", "--profile", "p",
          "\x01"
          "a",
          "--", "\x01"},
         "[\x01"
         "a][\x01]"},
        {{"decide", "a", "--profile", "p", "b"}, "[a][b]"},
        {{"decide", "--profile", "p", "--more", "x", "a", "--more=y", "b"}, "[a][b]<x><y>"},
        {{"decide", "--profile", "p", "a", "--more"},
         "--more: 1 required TEXT missing (try: vornak decide --help)"},
        {{"decide", "--profile", "p", "-z"}, "unknown option -z (try: vornak decide --help)"},
        {{"decide", "--profil", "p", "a"},
         "unknown option --profil; did you mean --profile? (try: vornak decide --help)"},
        {{"decide", "a", "--profile", "p", "--profile", "q"},
         "--profile may be given once only (try: vornak decide --help)"},
        {{"decide", "a"}, "--profile is required (try: vornak decide --help)"},
        {{"decide", "--profile=", "a"}, "--profile= has no value (try: vornak decide --help)"},
        {{"decide", "--profile=p", "--tags", "a", "b"},
         "MEDIA is required; --tags takes 2 values, here a and b (try: vornak decide --help)"},
        {{"decide", "--profile=p", "--", "--a="}, "[--a=]"},
        {{"decide", "--", "--a="}, "--profile is required (try: vornak decide --help)"},
        {{"decode", "a"}, "unknown subcommand decode; did you mean decide? (try: vornak --help)"},
        {{"profile", "shwo"},
         "unknown subcommand shwo; did you mean show? (try: vornak profile --help)"},
        {{"profile", "show", "a\nb"},
         "unexpected argument a\\x0ab (try: vornak profile show --help)"},
    };
    for (const auto &c : cases) EXPECT_EQ(parsed(c.words), c.result);
}

} // namespace
} // namespace vornak::test

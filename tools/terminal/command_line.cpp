#include "tools/terminal/command_line.h"

#include "tools/terminal/nearest_name.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <map>
#include <memory>
#include <string_view>

namespace vornak::tool {
namespace {

// The parser takes a word after "--" for an argument only while a required one is missing. So
// those words are marked, and the arguments lose the mark again.
constexpr char kMark = '\x01';

/// The words without the program's name, the last one first, as the parser wants them.
std::vector<std::string> markedWords(int argc, char **argv)
{
    std::vector<std::string> words;
    bool literal = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (!literal && word == "--") {
            literal = true;
            continue;
        }
        std::string marked;
        if (literal || word.starts_with(kMark)) marked = kMark;
        words.push_back(marked.append(word));
    }
    std::reverse(words.begin(), words.end());
    return words;
}

std::string unmark(std::string &word)
{
    if (word.starts_with(kMark)) word.erase(0, 1);
    return {};
}

void unmarkArguments(CLI::App &app)
{
    for (CLI::Option *option : app.get_options())
        if (option->get_positional()) option->transform(CLI::Validator(unmark, ""));
    for (CLI::App *sub : app.get_subcommands(std::function<bool(CLI::App *)>{}))
        unmarkArguments(*sub);
}

/// The subcommand that the words chose, down to the last that they name.
const CLI::App &chosenApp(const CLI::App &app)
{
    const std::vector<CLI::App *> chosen = app.get_subcommands();
    return chosen.empty() ? app : chosenApp(*chosen.front());
}

std::string fullName(const CLI::App &app)
{
    return app.get_parent() ? fullName(*app.get_parent()) + ' ' + app.get_name() : "vornak";
}

/// What is wrong with the first word that nothing takes.
std::string describeExtra(const CLI::App &app, std::string word)
{
    unmark(word);
    std::vector<std::string> known;
    std::string_view kind = "unexpected argument";
    if (word.starts_with('-')) {
        kind = "unknown option";
        word = word.substr(0, word.find('='));
        for (const CLI::Option *option : app.get_options())
            for (const std::string &name : option->get_lnames()) known.push_back("--" + name);
    } else if (const auto subcommands =
                   app.get_subcommands(std::function<bool(const CLI::App *)>{});
               !subcommands.empty()) {
        kind = "unknown subcommand";
        for (const CLI::App *sub : subcommands) known.push_back(sub->get_name());
    }
    return fmt::format("{} {}{}", kind, printable(word), didYouMean(word, known));
}

/// The option that was given more often than it may, or null. The parser's own words for it speak
/// of counts.
const CLI::Option *findRepeated(const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options())
        if (option->get_multi_option_policy() == CLI::MultiOptionPolicy::Throw &&
            option->count() > static_cast<std::size_t>(option->get_items_expected_max()))
            return option;
    return nullptr;
}

/// The first word such as "--profile=", whose option takes the next word for its value; or empty.
std::string_view findEmptyValue(int argc, char **argv)
{
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        const std::string_view word = argv[i];
        if (word.starts_with("--") && word.find('=') == word.size() - 1) return word;
    }
    return {};
}

/// What an option of several values took, perhaps one that was meant for what is missing.
std::string takenValues(const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options())
        if (!option->get_positional() && option->get_items_expected_min() > 1 &&
            option->count() > 0)
            return fmt::format("; {} takes {} values, here {}", option->get_name(),
                               option->get_items_expected_min(),
                               fmt::join(option->results(), " and "));
    return {};
}

/// Where else than on the command line a missing value may come from.
std::string otherSource(const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options())
        if (option->get_required() && option->count() == 0 && !option->get_envname().empty())
            return fmt::format(", or {} in the environment; vornak profile list shows names for it",
                               option->get_envname());
    return {};
}

/// The parser's own, but without all that an option excludes, which is longer than what it does.
class HelpTexts : public CLI::Formatter {
public:
    std::string make_option_opts(const CLI::Option *option) const override
    {
        const std::string text = CLI::Formatter::make_option_opts(option);
        return text.substr(0, text.find(" Excludes:"));
    }
};

} // namespace

void useShortHelp(CLI::App &app)
{
    app.formatter(std::make_shared<HelpTexts>());
}

void parseCommandLine(CLI::App &app, int argc, char **argv)
{
    unmarkArguments(app);
    try {
        app.parse(markedWords(argc, argv));
    } catch (const CLI::RequiredError &) {
        const std::string_view word = findEmptyValue(argc, argv);
        if (word.empty()) throw;
        throw CLI::ArgumentMismatch(fmt::format("{} has no value", word));
    }
}

void addColourOption(CLI::App &command)
{
    static const std::map<std::string, ColourUse> words = {
        {"auto", ColourUse::Auto}, {"always", ColourUse::Always}, {"never", ColourUse::Never}};
    command
        .add_option_function<std::string>(
            "--color", [](const std::string &word) { useColours(words.at(word)); },
            "Colour the text: auto does so on a terminal unless NO_COLOR is set and not empty")
        ->type_name("auto|always|never")
        ->check(CLI::IsMember({"auto", "always", "never"}).description(""));
}

CLI::Option *addRepeatable(CLI::App &command, const std::string &name,
                           std::vector<std::string> &values, const std::string &help)
{
    return command.add_option(name, values, help)->allow_extra_args(false);
}

std::string describeUsageError(const CLI::App &app, const CLI::ParseError &error)
{
    const CLI::App &chosen = chosenApp(app);
    const std::vector<std::string> extras = app.remaining(true);
    std::string what = printable(error.what());
    if (!extras.empty())
        what = describeExtra(chosen, extras.front());
    else if (const CLI::Option *repeated = findRepeated(chosen))
        what = repeated->get_name() + " may be given once only";
    else if (dynamic_cast<const CLI::RequiredError *>(&error))
        what += otherSource(chosen) + printable(takenValues(chosen));
    return fmt::format("{} (try: {} --help)", what, fullName(chosen));
}

} // namespace vornak::tool

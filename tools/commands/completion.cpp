#include "tools/commands/completion.h"

#include "base/media_ids.h"
#include "tools/import/described_player.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_search.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <sstream>

namespace vornak::tool {
namespace {

using Names = std::vector<std::string>;

Names profileNamesToComplete()
{
    Names names;
    for (const NamedProfile &profile : namedProfiles()) names.push_back(profile.name);
    return names;
}

Names codecNamesToComplete()
{
    Names names;
    for (const RegistryName &codec : s_CodecNames) names.emplace_back(codec.name);
    return names;
}

/// Each container, and each with every subtype.
Names containerNamesToComplete()
{
    Names names = knownContainers();
    for (const SubtypeName &row : s_SubtypeNames)
        names.push_back(containerText(row.containerId) + '/' + row.name);
    return names;
}

constexpr Names (*kNone)() = nullptr;
constexpr const char *kNoFile = nullptr;
constexpr const char *kAnyFile = ":files\n";
constexpr const char *kProfileFile = ":files .xml\n";

// What a value is called in the help texts says what it may be.
constexpr struct {
    const char *type;
    Names (*names)();
    const char *files;
} s_Types[] = {
    {"PROFILE", profileNamesToComplete, kProfileFile},
    {"CODEC", codecNamesToComplete, kNoFile},
    {"CONTAINER[/SUBTYPE]", containerNamesToComplete, kNoFile},
    {"EXCEPTION", knownPlayExceptions, kNoFile},
    {"KIND", likeNames, kNoFile},
    {"FILE", kNone, kAnyFile},
    {"DIR", kNone, kAnyFile},
    {"OUT", kNone, kAnyFile},
    {"PROGRAM", kNone, kAnyFile},
    {"MEDIA", kNone, kAnyFile},
    {"PATH", kNone, kAnyFile},
};

std::vector<const CLI::App *> subcommandsOf(const CLI::App &command)
{
    return command.get_subcommands(std::function<bool(const CLI::App *)>{});
}

class Completion {
public:
    /// @param begun  what the candidates begin with, less the "--option=" before it
    Completion(std::string option, std::string begun)
        : option_(std::move(option)), begun_(std::move(begun))
    {}

    void add(const std::string &name, const std::string &meaning = {})
    {
        if (!name.starts_with(begun_)) return;
        lines_ += option_ + name;
        if (!meaning.empty()) lines_ += '\t' + meaning.substr(0, meaning.find('\n'));
        lines_ += '\n';
    }

    void addValues(const CLI::Option &option)
    {
        if (const char comma = option.get_delimiter()) // the last of several is completed
            keep(begun_.rfind(comma) + 1);
        std::string type = option.get_type_name();
        if (type.empty()) type = option.get_name();
        for (const auto &row : s_Types) {
            if (type != row.type) continue;
            if (row.names)
                for (const std::string &name : row.names()) add(name);
            if (row.files) files_ = row.files;
        }
        std::istringstream choices(type); // such as 1|2
        if (type.find('|') == std::string::npos) return;
        for (std::string choice; std::getline(choices, choice, '|');) add(choice);
    }

    void addOptions(const CLI::App &command)
    {
        for (const CLI::Option *option : command.get_options())
            for (const std::string &name : option->get_lnames())
                add("--" + name, option->get_description());
    }

    void addArguments(const CLI::App &command)
    {
        for (const CLI::App *sub : subcommandsOf(command))
            add(sub->get_name(), sub->get_description());
        for (const CLI::Option *option : command.get_options())
            if (option->get_positional()) addValues(*option);
    }

    std::string take() { return lines_ + files_; }

private:
    /// Leaves the first `count` characters of what is begun as they are.
    void keep(std::size_t count)
    {
        option_ += begun_.substr(0, count);
        begun_.erase(0, count);
    }

    std::string option_, begun_, lines_, files_;
};

/// The option that a word names if it takes values, or null.
const CLI::Option *valuedOption(const CLI::App &command, const std::string &word)
{
    if (!word.starts_with('-')) return nullptr;
    const CLI::Option *option = command.get_option_no_throw(word);
    return option && option->get_items_expected_min() > 0 ? option : nullptr;
}

/// Where the next word of a command line stands.
struct WordPlace {
    const CLI::App *command;
    const CLI::Option *option = nullptr; ///< whose value it is
    bool isArgument = false;             ///< whatever it looks like
};

WordPlace placeBehind(const CLI::App &app, const Names &words)
{
    WordPlace place{&app};
    int values = 0; // that the option still takes
    for (const std::string &word : words) {
        if (values > 0) {
            --values;
        } else if (place.isArgument || word == "--") {
            place.isArgument = true;
        } else if ((place.option = valuedOption(*place.command, word))) {
            values = place.option->get_items_expected_min();
        } else {
            for (const CLI::App *sub : subcommandsOf(*place.command))
                if (sub->get_name() == word) place.command = sub;
        }
    }
    if (values == 0) place.option = nullptr;
    return place;
}

} // namespace

std::string completionsOf(const CLI::App &app, std::vector<std::string> words)
{
    if (words.empty()) return {};
    if (words.back() == "=") words.back().clear(); // bash makes three words of --option=value
    std::string begun = words.back(), before;
    words.pop_back();
    std::erase(words, "=");

    WordPlace place = placeBehind(app, words);
    if (const std::size_t sign = begun.find('='); !place.option && !place.isArgument &&
                                                  begun.starts_with("--") &&
                                                  sign != std::string::npos) {
        place.option = place.command->get_option_no_throw(begun.substr(0, sign));
        before = begun.substr(0, sign + 1);
        begun.erase(0, sign + 1);
    }
    Completion completion(before, begun);
    if (place.option)
        completion.addValues(*place.option);
    else if (begun.starts_with('-') && !place.isArgument)
        completion.addOptions(*place.command);
    else
        completion.addArguments(*place.command);
    return completion.take();
}

} // namespace vornak::tool

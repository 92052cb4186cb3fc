// vornak profile diff: what changes for a player's owner from one profile to another.
#include "tools/profile/profile_diff.h"
#include "tools/collection/decision_diff.h"
#include "tools/commands/decision_options.h"
#include "tools/commands/profile.h"
#include "tools/profile/profile_file.h"
#include "tools/profile/profile_search.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kProfileDiffHelp = "Tell what differs between two profiles, rule by rule";

constexpr const char *kProfileDiffFooter =
    R"(Of each difference, what the first profile says stands left of the bar. Rules that are alike belong
together wherever they stand, then those of one codec or container in their order.

Examples:
  vornak profile diff old.xml new.xml
      nothing, if the player is served alike
  vornak profile diff old.xml new.xml --probed films.jsonl
      whose decision changes, and why
  vornak profile diff --json old.xml new.xml | jq -r '.differences[].attribute'

Exit status: 0 no difference, 1 some or media that can't be read, 2 bad usage or a profile that
can't be loaded.
)";

struct DiffOptions {
    std::string left, right;
    bool json = false;
    MediaNames media;

    bool isAboutMedia() const { return !media.arguments.empty() || !media.probed.empty(); }
};

using Difference = ProfileDifference;

const char *sideName(Difference::Side side)
{
    return side == Difference::Left ? "left" : "right";
}

// ---- text --------------------------------------------------------------------------------

std::string placeText(const std::optional<RulePair::Place> &place)
{
    return place ? fmt::format("line {}", place->line) : "none";
}

/// The line above the differences of a rule.
std::string headText(const RulePair &rule)
{
    return fmt::format("{} {}{}{} ({} | {})", rule.element, colours().name, rule.name,
                       colours().reset, placeText(rule.left), placeText(rule.right));
}

std::string differenceText(const Difference &difference)
{
    const std::string both = fmt::format("{} | {}", difference.leftText, difference.rightText);
    switch (difference.kind) {
    case Difference::Player:
        return "the player's name: " + both;
    case Difference::Section:
        return both + ": without rules, nothing is decided about such files";
    case Difference::Target:
        return "what is transcoded becomes: " + both;
    case Difference::Rule:
        return fmt::format("on the {} alone: {}", difference.rules.back().left ? "left" : "right",
                           difference.leftText + difference.rightText);
    case Difference::Order:
        return fmt::format("the order: {}: {}", both,
                           difference.changesWhatIsTaken ? "the first that a file fits is taken"
                                                         : "none of them takes what another takes");
    case Difference::Property:
        break;
    }
    const char *more = difference.takesMore == Difference::Neither ? ""
                       : difference.takesMore == Difference::Left  ? " (the left takes more)"
                                                                   : " (the right takes more)";
    return fmt::format("{}: {}{}", difference.attribute, both, more);
}

std::string asText(const std::vector<Difference> &differences)
{
    std::string text;
    std::vector<std::string> heads; // that are written, the outermost first
    for (const Difference &difference : differences) {
        std::vector<std::string> wanted;
        if (difference.section) wanted.emplace_back(difference.section);
        for (const RulePair &rule : difference.rules) wanted.push_back(headText(rule));
        std::size_t depth = 0;
        while (depth < wanted.size() && depth < heads.size() && wanted[depth] == heads[depth])
            ++depth;
        for (; depth < wanted.size(); ++depth)
            text += fmt::format("{:{}}{}\n", "", 2 * depth, wanted[depth]);
        text += fmt::format("{:{}}{}\n", "", 2 * depth, differenceText(difference));
        heads = std::move(wanted);
    }
    return text;
}

// ---- JSON --------------------------------------------------------------------------------

Json placeJson(const std::optional<RulePair::Place> &place)
{
    if (!place) return nullptr;
    return {{"position", place->position}, {"line", place->line}};
}

Json differenceJson(const Difference &difference)
{
    constexpr const char *s_Kinds[] = {"player", "section", "target", "rule", "order", "property"};
    Json rules = Json::array();
    for (const RulePair &rule : difference.rules)
        rules.push_back({{"element", rule.element},
                         {"name", rule.name},
                         {"left", placeJson(rule.left)},
                         {"right", placeJson(rule.right)}});
    Json json{{"kind", s_Kinds[difference.kind]},
              {"section", difference.section ? Json(difference.section) : Json()},
              {"rules", std::move(rules)}};
    if (difference.attribute) {
        json["attribute"] = difference.attribute;
        json["field"] = difference.field;
    }
    json["left"] = difference.left;
    json["right"] = difference.right;
    if (difference.kind == Difference::Property)
        json["takesMore"] = difference.takesMore == Difference::Neither
                                ? Json()
                                : Json(sideName(difference.takesMore));
    if (difference.kind == Difference::Order)
        json["changesWhatIsTaken"] = difference.changesWhatIsTaken;
    return json;
}

std::string asJson(const DiffOptions &options, const std::vector<Difference> &differences)
{
    Json json = documentHead("vornak-profile-diff");
    json["left"] = pathFields(options.left);
    json["right"] = pathFields(options.right);
    json["differences"] = Json::array();
    for (const Difference &each : differences) json["differences"].push_back(differenceJson(each));
    return json.dump(2) + '\n';
}

int runDecisionDiff(const DiffOptions &options)
{
    checkMedia(options.media, options.left == "-" || options.right == "-");
    const std::vector<MatrixColumn> both = loadColumns({options.left, options.right});
    if (lacksPlayer(both)) return kUnusable; // which has been said
    return areDecidedAlike(both, options.media) ? kDone : kIncomplete;
}

int runProfileDiff(const DiffOptions &options)
{
    if (options.isAboutMedia()) return runDecisionDiff(options);
    const ProfileSession left(options.left), right(options.right);
    complainOfWarnings(options.left, left);
    complainOfWarnings(options.right, right);
    const std::vector<Difference> differences = differencesOf(left, right);
    writeOut(options.json ? asJson(options, differences) : asText(differences));
    return differences.empty() ? kDone : kIncomplete;
}

} // namespace

void addProfileDiff(CLI::App &app, int &status)
{
    auto options = std::make_shared<DiffOptions>();
    CLI::App *command = app.add_subcommand("diff", kProfileDiffHelp);
    command->add_option("PROFILE", options->left, "The profile on the left: a file, a name, or -")
        ->required()
        ->type_name("");
    command->add_option("OTHER", options->right, "The profile on the right")
        ->required()
        ->type_name("");
    command->parse_complete_callback([options] {
        options->left = findProfile(options->left);
        options->right = findProfile(options->right);
    });
    CLI::Option *media = addMediaArgument(*command, options->media);
    media->description(
        "Tell whose decision changes, of these files and folders, or of those that are "
        "listed on standard input (-)");
    CLI::Option *probed = addProbedOption(*command, options->media.probed, *media);
    command
        ->add_flag("--json", options->json, "Print one JSON document of the rules, without media")
        ->excludes(media)
        ->excludes(probed);
    addColourOption(*command);
    command->footer(kProfileDiffFooter);
    command->callback([options, &status] { status = runProfileDiff(*options); });
}

} // namespace vornak::tool

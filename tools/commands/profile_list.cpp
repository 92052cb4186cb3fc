// vornak profile list: the profiles that can be named instead of a file.
#include "tools/commands/profile.h"
#include "tools/profile/profile_document.h"
#include "tools/profile/profile_search.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kProfileListHelp = "List the profiles that -p takes by name";

constexpr const char *kProfileListFooter = R"(They are the files NAME.xml in
  $XDG_CONFIG_HOME/vornak/profiles   or ~/.config/vornak/profiles
  /etc/vornak/profiles
  the examples that are installed with the program, PREFIX/share/vornak/profiles
of one name, the first.

Examples:
  vornak profile list
      the names, each with its player and its file
  vornak profile show older-tv
      one of them

Exit status: 0 listed, also where there is none or one can't be loaded; 2 bad usage.
)";

struct Listed {
    NamedProfile profile;
    std::string device; ///< DEVICE's NAME; empty where it can't be loaded
    std::string error;  ///< why
};

Listed lookInto(const NamedProfile &profile)
{
    try {
        const ProfileDocument document(profile.path);
        return {profile, document.device().attribute("NAME").value(), {}};
    } catch (const ProfileError &error) {
        return {profile, {}, error.what()};
    }
}

std::string asText(const std::vector<Listed> &list)
{
    std::size_t nameWidth = 0, deviceWidth = 0;
    for (const Listed &row : list) {
        nameWidth = std::max(nameWidth, printable(row.profile.name).size());
        deviceWidth = std::max(deviceWidth, printable(row.device).size());
    }
    std::string text;
    for (const Listed &row : list)
        text += fmt::format("{:{}}  {:{}}  {}\n", printable(row.profile.name), nameWidth,
                            printable(row.device), deviceWidth, printable(row.profile.path));
    return text;
}

std::string asJson(const std::vector<Listed> &list)
{
    Json json = documentHead("vornak-profile-list");
    json["profiles"] = Json::array();
    for (const Listed &row : list) {
        Json entry{{"name", printable(row.profile.name)},
                   {"device", nullptr},
                   {"path", printable(row.profile.path)},
                   {"pathHex", hexBytes(row.profile.path)}};
        if (row.error.empty()) entry["device"] = printable(row.device);
        json["profiles"].push_back(std::move(entry));
    }
    return json.dump(2) + '\n';
}

int runProfileList(bool json)
{
    std::vector<Listed> list;
    for (const NamedProfile &profile : namedProfiles()) list.push_back(lookInto(profile));
    for (const Listed &row : list)
        if (!row.error.empty()) complain(row.error);
    if (list.empty()) complain(fmt::format("no profiles in {}", fmt::join(profileFolders(), ", ")));
    writeOut(json ? asJson(list) : asText(list));
    return kDone;
}

} // namespace

void addProfileList(CLI::App &app, int &status)
{
    auto json = std::make_shared<bool>();
    CLI::App *command = app.add_subcommand("list", kProfileListHelp);
    command->add_flag("--json", *json, "Print one JSON document");
    command->footer(kProfileListFooter);
    command->callback([json, &status] { status = runProfileList(*json); });
}

} // namespace vornak::tool

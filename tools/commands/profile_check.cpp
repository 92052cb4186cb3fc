// vornak profile check: what profiles say that they don't do.
#include "tools/check/checks.h"
#include "tools/check/finding_formats.h"
#include "tools/check/mends.h"
#include "tools/commands/profile.h"
#include "tools/commands/profile_output.h"
#include "tools/files/media_list.h"
#include "tools/profile/profile_file.h"
#include "tools/profile/profile_search.h"
#include "tools/terminal/command_line.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <iostream>
#include <iterator>
#include <memory>
#include <sys/stat.h>

namespace vornak::tool {
namespace {

constexpr const char *kProfileCheckHelp =
    "Report what profiles say in vain: what is left out, read as something else, or surely not "
    "meant";

constexpr const char *kProfileCheckFooter = R"(Examples:
  vornak profile check tv.xml
      one finding after the other: line and column, severity, what is wrong, its id, what to do
  vornak profile check --severity warning --format gcc profiles/
      all below a folder, in lines as compilers write them, without notes
  vornak profile check --fix=diff tv.xml
      what --fix would change: all that can be mended in one way only
  vornak profile check --list
      all that can be found, each with an example

In a profile, <!-- vornak: ignore ID ... --> silences findings in the element that follows.

Exit status: 0 no error and no warning shown, 1 some shown, 2 bad usage or a profile that can't be
loaded.
)";

constexpr struct {
    const char *name;
    FindingFormat write;
} s_Formats[] = {
    {"text", findingsAsText},
    {"gcc", findingsAsGcc},
    {"json", findingsAsJson},
    {"sarif", findingsAsSarif},
};

struct CheckOptions {
    std::vector<std::string> profiles;
    std::string severity = "note", format = "text", fix;
    bool json = false, list = false;
};

Severity severityCalled(const std::string &name)
{
    for (const Severity severity : {Severity::Error, Severity::Warning})
        if (name == severityName(severity)) return severity;
    return Severity::Note;
}

bool isProfileName(std::string_view name)
{
    return name.ends_with(".xml");
}

/// The files that the arguments stand for: names, files, and folders with all below them.
std::vector<std::string> filesOf(const std::vector<std::string> &arguments)
{
    std::vector<std::string> files;
    for (const std::string &argument : arguments) {
        const std::string path = findProfile(argument);
        std::error_code error;
        if (path == "-" || !std::filesystem::is_directory(path, error)) {
            files.push_back(path);
            continue;
        }
        const std::size_t before = files.size();
        MediaList list({{path}, false}, std::cin, isProfileName);
        while (const std::optional<MediaItem> item = list.next()) files.push_back(item->path);
        if (files.size() == before)
            throw std::runtime_error(
                fmt::format("{}: no file in it is called NAME.xml", printable(path)));
    }
    return files;
}

/// The mends of a profile, and of what they bring to light.
std::vector<Edit> allEdits(const std::string &text, const std::vector<Finding> &findings)
{
    constexpr int kMostRounds = 4;
    std::vector<Edit> edits = editsOf(findings);
    for (int round = 1; round < kMostRounds && !edits.empty(); ++round) {
        const ProfileInMemory mended(withEdits(text, edits));
        const std::vector<Edit> more = editsOf(checkProfile(mended.path()));
        if (more.empty()) break;
        edits = joined(edits, more);
    }
    return edits;
}

/// Makes the mends in the file.
void mend(const std::string &path, const std::string &text, const std::vector<Edit> &edits)
{
    struct stat before = {};
    if (path == "-")
        throw std::runtime_error("standard input can't be mended; --fix=diff shows how");
    if (stat(path.c_str(), &before) != 0) before.st_mode = 0644;
    writeProfile(withEdits(text, edits), {path, true}, before.st_mode & 0777U);
}

void tellMends(const std::string &path, std::size_t edits, bool isDiff)
{
    if (edits == 0)
        complain(fmt::format("{}: there is nothing that can be mended in one way only",
                             printable(profileTitle(path))));
    else if (!isDiff)
        complain(fmt::format("{}: {} place{} mended", printable(profileTitle(path)), edits,
                             edits == 1 ? "" : "s"));
}

CheckedProfile check(const std::string &path, const CheckOptions &options, std::string &diff)
{
    try {
        std::string text;
        std::vector<Finding> findings = checkProfile(path, text);
        const std::vector<Edit> edits =
            options.fix.empty() ? std::vector<Edit>{} : allEdits(text, findings);
        if (!options.fix.empty() && !findings.empty())
            tellMends(path, edits.size(), options.fix == "diff");
        if (options.fix == "diff") diff += diffOf(printable(profileTitle(path)), text, edits);
        if (options.fix == "write" && !edits.empty()) {
            mend(path, text, edits);
            findings = checkProfile(path, text);
        }
        const auto found = countSeverities(findings);
        const Severity least = severityCalled(options.severity);
        std::erase_if(findings, [&](const Finding &finding) {
            return kindOf(finding.fault).severity > least;
        });
        return {path, std::move(findings), {}, found};
    } catch (const ProfileError &error) {
        complain(error.what());
        return {path, {}, error.what(), {}};
    }
}

int statusOf(const std::vector<CheckedProfile> &profiles)
{
    const auto isFault = [](const Finding &finding) {
        return kindOf(finding.fault).severity != Severity::Note;
    };
    int status = kDone;
    for (const CheckedProfile &profile : profiles) {
        if (!profile.error.empty()) return kUnusable;
        if (std::ranges::any_of(profile.findings, isFault)) status = kIncomplete;
    }
    return status;
}

int runProfileCheck(const CheckOptions &options)
{
    if (options.list) {
        writeOut(faultPage());
        return kDone;
    }
    if (options.profiles.empty()) throw CLI::RequiredError("PROFILE");
    std::vector<CheckedProfile> profiles;
    std::string diff;
    for (const std::string &path : filesOf(options.profiles))
        profiles.push_back(check(path, options, diff));
    const std::string format = options.json ? "json" : options.format;
    const auto *const row = std::ranges::find(
        s_Formats, format, [](const auto &each) { return std::string(each.name); });
    writeOut(options.fix == "diff" ? diff : row->write(profiles));
    return statusOf(profiles);
}

} // namespace

void addProfileCheck(CLI::App &app, int &status)
{
    auto options = std::make_shared<CheckOptions>();
    CLI::App *command = app.add_subcommand("check", kProfileCheckHelp);
    command
        ->add_option("PROFILE", options->profiles,
                     "Profiles: files, folders of NAME.xml, names that vornak profile list shows, "
                     "or - for standard input")
        ->type_name("");
    command->add_option("--severity", options->severity, "Show findings as bad as this, or worse")
        ->check(CLI::IsMember({"error", "warning", "note"}).description(""))
        ->type_name("error|warning|note");
    command->add_option("--format", options->format, "How to print what is found")
        ->check(CLI::IsMember({"text", "gcc", "json", "sarif"}).description(""))
        ->type_name("text|gcc|json|sarif");
    command->add_flag("--json", options->json, "The same as --format json");
    command
        ->add_flag("--fix{write}", options->fix,
                   "Mend what can be mended in one way only; --fix=diff shows the changes instead")
        ->check(CLI::IsMember({"write", "diff"}).description(""))
        ->type_name("write|diff")
        ->option_text("[=write|diff]");
    command->add_flag("--list", options->list,
                      "Print all that can be found, each with an example and the same mended");
    addColourOption(*command);
    command->footer(kProfileCheckFooter);
    command->callback([options, &status] { status = runProfileCheck(*options); });
}

} // namespace vornak::tool

// vornak profile check: what a profile says that it doesn't do.
#include "tools/check/checks.h"
#include "tools/commands/profile.h"
#include "tools/profile/profile_file.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kProfileCheckHelp =
    "Report what a profile says in vain: what is left out, read as "
    "something else, or surely not meant";

constexpr const char *kProfileCheckFooter = R"(Examples:
  vornak profile check tv.xml
      one finding after the other: line, severity, what is wrong, its id, what to do
  vornak profile check --json tv.xml | jq -r '.findings[].id'

Exit status: 0 nothing found, 1 something found, 2 bad usage or a profile that can't be loaded.
)";

struct Counts {
    int errors = 0, warnings = 0, notes = 0;
};

Counts countSeverities(const std::vector<Finding> &findings)
{
    Counts counts;
    for (const Finding &finding : findings) {
        const Severity severity = kindOf(finding.fault).severity;
        (severity == Severity::Error     ? counts.errors
         : severity == Severity::Warning ? counts.warnings
                                         : counts.notes)++;
    }
    return counts;
}

std::string plural(int count, const char *one)
{
    return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

std::string_view colourOf(Severity severity)
{
    return severity == Severity::Error ? colours().bad : colours().change;
}

std::string asText(const std::string &path, const std::vector<Finding> &findings)
{
    std::string text;
    for (const Finding &finding : findings) {
        const FaultKind &kind = kindOf(finding.fault);
        text += fmt::format("{}:{}: {}{}{}: {} [{}]\n    {}\n", printable(profileTitle(path)),
                            finding.line, colourOf(kind.severity), severityName(kind.severity),
                            colours().reset, finding.problem, kind.id, finding.advice);
    }
    const Counts counts = countSeverities(findings);
    if (findings.empty()) return fmt::format("{}: nothing found\n", printable(profileTitle(path)));
    return text + fmt::format("{}: {}, {}, {}\n", printable(profileTitle(path)),
                              plural(counts.errors, "error"), plural(counts.warnings, "warning"),
                              plural(counts.notes, "note"));
}

std::string asJson(const std::string &path, const std::vector<Finding> &findings)
{
    Json list = Json::array();
    for (const Finding &finding : findings) {
        const FaultKind &kind = kindOf(finding.fault);
        list.push_back({{"line", finding.line},
                        {"severity", severityName(kind.severity)},
                        {"id", kind.id},
                        {"element", finding.element},
                        {"attribute", finding.attribute.empty() ? Json() : Json(finding.attribute)},
                        {"problem", finding.problem},
                        {"advice", finding.advice}});
    }
    const Counts counts = countSeverities(findings);
    Json json = documentHead("vornak-profile-check", path);
    json["findings"] = std::move(list);
    json["summary"] = {
        {"errors", counts.errors}, {"warnings", counts.warnings}, {"notes", counts.notes}};
    return json.dump(2) + '\n';
}

int runProfileCheck(const ProfileOptions &options)
{
    const std::vector<Finding> findings = checkProfile(options.path);
    writeOut(options.json ? asJson(options.path, findings) : asText(options.path, findings));
    return findings.empty() ? kDone : kIncomplete;
}

} // namespace

void addProfileCheck(CLI::App &app, int &status)
{
    auto options = std::make_shared<ProfileOptions>();
    CLI::App *command = app.add_subcommand("check", kProfileCheckHelp);
    addProfileOptions(*command, *options);
    command->footer(kProfileCheckFooter);
    command->callback([options, &status] { status = runProfileCheck(*options); });
}

} // namespace vornak::tool

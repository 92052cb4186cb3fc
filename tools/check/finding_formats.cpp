#include "tools/check/finding_formats.h"

#include "include/vornak.h"
#include "tools/profile/profile_file.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <iterator>

namespace vornak::tool {
namespace {

/// "2 errors, 1 warning, 3 notes (not shown)"
std::string sumOf(const CheckedProfile &profile)
{
    if (profile.found == std::array{0, 0, 0}) return "nothing found";
    const std::array<int, 3> shown = countSeverities(profile.findings);
    std::string sum;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
        const auto i = static_cast<std::size_t>(severity);
        sum += fmt::format("{}{} {}{}{}", sum.empty() ? "" : ", ", profile.found[i],
                           severityName(severity), profile.found[i] == 1 ? "" : "s",
                           shown[i] < profile.found[i] ? " (not shown)" : "");
    }
    return sum;
}

std::string_view colourOf(Severity severity)
{
    return severity == Severity::Error ? colours().bad : colours().change;
}

std::string placeOf(const CheckedProfile &profile, const Finding &finding)
{
    return fmt::format("{}:{}:{}", printable(profileTitle(profile.path)), finding.line,
                       finding.column);
}

/// Printable text, or null for none.
Json nullOr(const std::string &text)
{
    return text.empty() ? Json() : Json(text);
}

Json fieldsOf(const CheckedProfile &profile)
{
    Json list = Json::array();
    for (const Finding &finding : profile.findings) {
        const FaultKind &kind = kindOf(finding.fault);
        list.push_back({{"line", finding.line},
                        {"column", finding.column},
                        {"severity", severityName(kind.severity)},
                        {"id", kind.id},
                        {"element", nullOr(finding.element)},
                        {"attribute", nullOr(finding.attribute)},
                        {"problem", finding.problem},
                        {"advice", finding.advice}});
    }
    const auto [errors, warnings, notes] = profile.found;
    return {{"findings", std::move(list)},
            {"summary", {{"errors", errors}, {"warnings", warnings}, {"notes", notes}}}};
}

// ---- SARIF -------------------------------------------------------------------------------

/// A path as a reference that stays relative, or the URL of an absolute one.
std::string uriOf(const std::string &path)
{
    constexpr std::string_view kPlain = "-._~/";
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : profileTitle(path)) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 0x80 && std::isalnum(byte)) || kPlain.find(c) != std::string_view::npos)
            uri += c;
        else
            uri += fmt::format("%{:02X}", byte);
    }
    return uri;
}

Json sarifText(std::string_view text)
{
    return {{"text", fmt::format("{}{}", text, text.ends_with('.') ? "" : ".")}};
}

Json sarifRules()
{
    Json rules = Json::array();
    for (const FaultKind &kind : faultKinds())
        rules.push_back({{"id", kind.id},
                         {"shortDescription", sarifText(kind.cause)},
                         {"fullDescription", sarifText(kind.cause)},
                         {"help", sarifText(kind.mend)},
                         {"defaultConfiguration", {{"level", severityName(kind.severity)}}}});
    return rules;
}

Json sarifPlace(const std::string &path)
{
    return {{"artifactLocation", {{"uri", uriOf(path)}}}};
}

Json sarifResult(const CheckedProfile &profile, const Finding &finding)
{
    const FaultKind &kind = kindOf(finding.fault);
    Json place = sarifPlace(profile.path);
    place["region"] = {{"startLine", finding.line}, {"startColumn", finding.column}};
    Json locations = Json::array();
    locations.push_back({{"physicalLocation", std::move(place)}});
    return {{"ruleId", kind.id},
            {"ruleIndex", static_cast<int>(kind.fault)},
            {"level", severityName(kind.severity)},
            {"message", sarifText(fmt::format("{}: {}", finding.problem, finding.advice))},
            {"locations", std::move(locations)}};
}

} // namespace

std::array<int, 3> countSeverities(const std::vector<Finding> &findings)
{
    std::array<int, 3> counts{};
    for (const Finding &finding : findings)
        ++counts[static_cast<std::size_t>(kindOf(finding.fault).severity)];
    return counts;
}

std::string findingsAsText(const std::vector<CheckedProfile> &profiles)
{
    std::string text;
    for (const CheckedProfile &profile : profiles) {
        if (!profile.error.empty()) continue;
        for (const Finding &finding : profile.findings) {
            const FaultKind &kind = kindOf(finding.fault);
            text += fmt::format("{}: {}{}{}: {} [{}]\n    {}\n", placeOf(profile, finding),
                                colourOf(kind.severity), severityName(kind.severity),
                                colours().reset, finding.problem, kind.id, finding.advice);
        }
        text += fmt::format("{}: {}\n", printable(profileTitle(profile.path)), sumOf(profile));
    }
    return text;
}

std::string findingsAsGcc(const std::vector<CheckedProfile> &profiles)
{
    std::string text;
    for (const CheckedProfile &profile : profiles)
        for (const Finding &finding : profile.findings) {
            const FaultKind &kind = kindOf(finding.fault);
            text +=
                fmt::format("{}: {}: {}; {} [{}]\n", placeOf(profile, finding),
                            severityName(kind.severity), finding.problem, finding.advice, kind.id);
        }
    return text;
}

std::string findingsAsJson(const std::vector<CheckedProfile> &profiles)
{
    if (profiles.size() == 1) {
        if (!profiles.front().error.empty()) return {};
        Json json = documentHead("vornak-profile-check", profiles.front().path);
        json.update(fieldsOf(profiles.front()));
        return json.dump(2) + '\n';
    }
    Json json = documentHead("vornak-profile-check-list");
    json["files"] = Json::array();
    for (const CheckedProfile &profile : profiles) {
        Json file = pathFields(profile.path);
        file["error"] = nullOr(profile.error);
        file.update(fieldsOf(profile));
        json["files"].push_back(std::move(file));
    }
    return json.dump(2) + '\n';
}

std::string findingsAsSarif(const std::vector<CheckedProfile> &profiles)
{
    Json results = Json::array(), notifications = Json::array();
    for (const CheckedProfile &profile : profiles) {
        for (const Finding &finding : profile.findings)
            results.push_back(sarifResult(profile, finding));
        if (profile.error.empty()) continue;
        Json locations = Json::array();
        locations.push_back({{"physicalLocation", sarifPlace(profile.path)}});
        notifications.push_back({{"level", "error"},
                                 {"message", sarifText(profile.error)},
                                 {"locations", std::move(locations)}});
    }
    Json invocation = {{"executionSuccessful", notifications.empty()},
                       {"toolExecutionNotifications", std::move(notifications)}};
    Json run;
    run["tool"]["driver"] = {
        {"name", "vornak"}, {"version", VORNAK_VERSION}, {"rules", sarifRules()}};
    run["invocations"] = Json::array({std::move(invocation)});
    run["columnKind"] = "unicodeCodePoints";
    run["results"] = std::move(results);
    Json log = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"}, {"version", "2.1.0"}};
    log["runs"] = Json::array({std::move(run)});
    return log.dump(2) + '\n';
}

} // namespace vornak::tool

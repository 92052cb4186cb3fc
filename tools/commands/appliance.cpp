// vornak appliance: what the library asks of the appliance, and what is answered.
#include "include/vornak.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <memory>
#include <unistd.h>

namespace vornak::tool {
namespace {

struct Answer {
    int result = 0;                  ///< of the library's function
    std::optional<std::string> text; ///< none: there is nothing of the kind
    std::string said;                ///< on standard error, meanwhile
};

Answer askRegistry(const char *key)
{
    char value[1024] = "";
    const int result = getPakrelInfo("Harvel", key, value, sizeof value);
    return {result, result == 0 ? std::optional<std::string>(value) : std::nullopt, {}};
}

Answer askEnabled()
{
    return askRegistry("ENABLE");
}

Answer askInstallPath()
{
    return askRegistry("Install_Path");
}

Answer askAgent()
{
    const int result = isVATranscodeExist();
    if (result == 0) return {};
    return {result, result == 2 ? "gst-transcode-agent2" : "gst-transcode-agent", {}};
}

Answer askMarker()
{
    const int result = isHWFfmpegExist();
    return {result, result == 1 ? std::optional<std::string>("there") : std::nullopt, {}};
}

Answer askVolumeRoot()
{
    char root[VORNAK_VOLUME_ROOT_SIZE] = "";
    const int result = getMainMountPath(root);
    return {result, result == 0 ? std::optional<std::string>(root) : std::nullopt, {}};
}

struct Question {
    const char *key, *title;      // in JSON, in the text
    const char *function, *asked; // of the library; what that asks of the system
    Answer (*ask)();
};

constexpr Question s_Questions[] = {
    {"enabled", "add-on enabled", "getPakrelInfo",
     "/sbin/tolvex -f /etc/config/pakrel.conf Harvel ENABLE", askEnabled},
    {"installPath", "install path", "getPakrelInfo",
     "/sbin/tolvex -f /etc/config/pakrel.conf Harvel Install_Path", askInstallPath},
    {"agent", "transcode agent", "isVATranscodeExist",
     "gst-transcode-agent2, then gst-transcode-agent, in an enabled add-on", askAgent},
    {"marker", "marker file", "isHWFfmpegExist", "/tmp/.Harvel.alive", askMarker},
    {"volumeRoot", "volume root", "getMainMountPath",
     "the first of /share/Public, /share/Multimedia and /share/Ombrel", askVolumeRoot},
};

/// Asks, with what the query tool and the shell say about it kept from the terminal.
Answer ask(const Question &question)
{
    DivertedOutput said(STDERR_FILENO);
    Answer answer = question.ask();
    answer.said = said.take();
    while (answer.said.ends_with('\n')) answer.said.pop_back();
    return answer;
}

std::string toText(const Question &question, const Answer &answer)
{
    std::string text = fmt::format("{:<15}  {}\n{:17}asked   {}: {}\n", question.title,
                                   answer.text ? printable(*answer.text) : "none", "",
                                   question.function, question.asked);
    if (!answer.said.empty()) text += fmt::format("{:17}said    {}\n", "", printable(answer.said));
    return text;
}

Json toJson(const Question &question, const Answer &answer)
{
    Json json{{"function", question.function},
              {"asked", question.asked},
              {"result", answer.result},
              {"answer", nullptr}};
    if (answer.text) json["answer"] = printable(*answer.text);
    if (!answer.said.empty()) json["said"] = printable(answer.said);
    return json;
}

int runAppliance(bool asJson)
{
    std::string text;
    Json json = documentHead("vornak-appliance");
    for (const Question &question : s_Questions) {
        const Answer answer = ask(question);
        text += toText(question, answer);
        json[question.key] = toJson(question, answer);
    }
    writeOut(asJson ? json.dump(2) + '\n' : text);
    return kDone;
}

} // namespace

void addAppliance(CLI::App &app, int &status)
{
    auto asJson = std::make_shared<bool>(false);
    CLI::App *command = app.add_subcommand(
        "appliance", "Show what the appliance answers: transcoder add-on, agent, marker file, "
                     "volume root");
    command->add_flag("--json", *asJson, "Print a JSON document");
    command->footer("Examples:\n"
                    "  vornak appliance\n"
                    "  vornak appliance --json | jq -r .agent.answer\n\n"
                    "Exit status: 0 asked, whatever the answers are; 2 bad usage.\n");
    command->callback([asJson, &status] { status = runAppliance(*asJson); });
}

} // namespace vornak::tool

// vornak elements: the GStreamer elements of codecs and containers.
#include "base/media_ids.h"
#include "include/vornak.h"
#include "include/vornak_host.h"
#include "tools/commands/subcommands.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/nearest_name.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>

namespace vornak::tool {
namespace {

struct ElementsOptions {
    std::string codec;     ///< empty: none is asked for
    std::string container; ///< the same
    std::optional<int> hardwareClass;
    bool all = false;
    bool asJson = false;
};

/// One answer of the library.
struct Row {
    std::string name; ///< the codec's or container's
    int id;
    const char *element; ///< null: none
    int flag = 0;        ///< of a multiplexer
};

/// The answers by role.
struct Elements {
    std::vector<Row> decoders, demuxers, muxers;
};

[[noreturn]] void refuse(std::string_view what, const std::string &name, std::string_view hint)
{
    throw std::runtime_error(fmt::format("{} {}{}", what, printable(name), hint));
}

int codecIdOf(const std::string &name)
{
    int id = 0;
    if (CodecNameToID(name.c_str(), &id) == 0) return id;
    std::vector<std::string> known;
    std::ranges::transform(s_CodecNames, std::back_inserter(known), &RegistryName::name);
    refuse("unknown codec", name, didYouMean(name, known));
}

int containerIdOf(const std::string &name)
{
    const std::size_t slash = name.find('/');
    const std::string container = name.substr(0, slash);
    const std::string subtype = slash == std::string::npos ? "" : name.substr(slash + 1);
    int id = 0;
    if (ContainerFormatNameToID(container.c_str(), nullptr, &id) != 0)
        refuse("unknown container", container, nearestOrAll(container, knownContainers()));
    if (ContainerFormatNameToID(container.c_str(), subtype.c_str(), &id) != 0)
        refuse(container + " has no subtype", subtype, nearestOrAll(subtype, knownSubtypes(id)));
    return id;
}

/// Hardware decoders depend on the container that the codec comes in; 0: whatever it is.
void addDecoder(Elements &elements, int codecId, int containerId, std::optional<int> hardwareClass)
{
    const char *element = CodecId_To_GSTCodecStr(codecId, containerPart(containerId),
                                                 hardwareClass.value_or(0), hardwareClass ? 1 : 0);
    elements.decoders.push_back({codecText(codecId), codecId, element});
}

void addContainer(Elements &elements, int containerId)
{
    const std::string name = containerText(containerId);
    int flag = 0;
    const char *muxer = FormatId_To_GSTMuxEncStr(containerId, &flag);
    elements.demuxers.push_back({name, containerId, FormatId_To_GSTMuxDecStr(containerId)});
    elements.muxers.push_back({name, containerId, muxer, flag});
}

Elements findElements(const ElementsOptions &options)
{
    Elements elements;
    const int container = options.container.empty() ? 0 : containerIdOf(options.container);
    if (!options.codec.empty())
        addDecoder(elements, codecIdOf(options.codec), container, options.hardwareClass);
    if (!options.container.empty()) addContainer(elements, container);
    return elements;
}

Elements listElements(std::optional<int> hardwareClass)
{
    Elements elements;
    for (const RegistryName &codec : s_CodecNames) addDecoder(elements, codec.id, 0, hardwareClass);
    for (const RegistryName &container : s_ContainerNames) addContainer(elements, container.id);
    for (std::vector<Row> *rows : {&elements.decoders, &elements.demuxers, &elements.muxers})
        std::erase_if(*rows, [](const Row &row) { return !row.element; });
    return elements;
}

std::string toText(const char *role, const std::vector<Row> &rows)
{
    std::string text;
    for (const Row &row : rows) {
        text += fmt::format("{}  {:<16}  {}", role, row.name,
                            row.element ? printable(row.element) : "none");
        text += row.flag != 0 ? fmt::format("  (flag {})\n", row.flag) : "\n";
    }
    return text;
}

Json toJson(const char *kind, const std::vector<Row> &rows)
{
    auto json = Json::array();
    for (const Row &row : rows) {
        Json entry{{kind, row.name}, {"id", row.id}, {"element", nullptr}};
        if (row.element) entry["element"] = row.element;
        json.push_back(std::move(entry));
    }
    return json;
}

Json toJson(const Elements &elements, std::optional<int> hardwareClass)
{
    Json json = documentHead("vornak-elements");
    json["hardwareClass"] = hardwareClass ? Json(*hardwareClass) : Json();
    json["decoders"] = toJson("codec", elements.decoders);
    json["demuxers"] = toJson("container", elements.demuxers);
    json["muxers"] = toJson("container", elements.muxers);
    for (std::size_t i = 0; i < elements.muxers.size(); ++i)
        json["muxers"][i]["flag"] = elements.muxers[i].flag;
    return json;
}

int runElements(const ElementsOptions &options)
{
    const Elements elements =
        options.all ? listElements(options.hardwareClass) : findElements(options);
    if (options.asJson)
        writeOut(toJson(elements, options.hardwareClass).dump(2) + '\n');
    else
        writeOut(toText("decoder", elements.decoders) + toText("demuxer", elements.demuxers) +
                 toText("muxer  ", elements.muxers));
    return kDone;
}

} // namespace

void addElements(CLI::App &app, int &status)
{
    auto options = std::make_shared<ElementsOptions>();
    CLI::App *command =
        app.add_subcommand("elements", "Name the GStreamer elements of codecs and containers");
    CLI::Option *codec = command->add_option("--codec", options->codec, "A codec to decode");
    codec->type_name("CODEC");
    CLI::Option *container = command->add_option(
        "--container", options->container, "A container to read and write: NAME or NAME/SUBTYPE");
    container->type_name("CONTAINER[/SUBTYPE]");
    command->add_option("--hardware", options->hardwareClass,
                        "Ask for hardware decoding on this class of machine (1, 2, 3, 7, 8, 9 and "
                        "10 have it)");
    CLI::Option *all = command->add_flag("--list", options->all, "Name every element");
    all->excludes(codec)->excludes(container);
    command->add_flag("--json", options->asJson, "Print a JSON document");
    command->footer("Video in MPEG program and transport streams is always decoded in software.\n\n"
                    "Examples:\n"
                    "  vornak elements --codec h264 --container mp4\n"
                    "  vornak elements --codec h264 --container matroska --hardware 1\n"
                    "  vornak elements --list --json\n\n"
                    "Exit status: 0 shown, also where there is no element; 2 bad usage or an "
                    "unknown name.\n");
    command->callback([=, &status] {
        if (!options->all && options->codec.empty() && options->container.empty())
            throw CLI::RequiredError("--codec, --container or --list");
        status = runElements(*options);
    });
}

} // namespace vornak::tool

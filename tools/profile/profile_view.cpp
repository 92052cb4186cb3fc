#include "tools/profile/profile_view.h"

#include "tools/profile/id_names.h"
#include "tools/profile/profile_session.h"
#include "tools/profile/rule_text.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

/// @param all  elements that the table was made of, unless no record is valid
std::string countText(std::size_t valid, int all, const char *element)
{
    if (valid == 0) return fmt::format("no valid {}", element);
    const std::size_t left = static_cast<std::size_t>(all) - valid;
    if (left == 0) return std::to_string(valid);
    return fmt::format("{}, and {} {} left out", valid, left, element);
}

class Tree {
public:
    explicit Tree(const ProfileSession &session) : session_(session) {}

    std::string write()
    {
        const TRANSCODE_DEVICE_PROFILE_ST &profile = session_.profile();
        add(0,
            fmt::format("{}{}{}", colours().name, printable(profile.deviceName), colours().reset));
        addTable(0, "MUSIC", "ACODEC", profile.pAudioTable);
        addTable(0, "VIDEO", "VCODEC", profile.pVideoTable);
        return std::move(text_);
    }

private:
    void add(int depth, std::string_view line)
    {
        text_ += fmt::format("{:{}}{}\n", "", 2 * depth, line);
    }

    template <class Record>
    void addTable(int depth, const char *title, const char *element, const Record *table)
    {
        if (!table) return add(depth, fmt::format("{}: none", title));
        std::size_t valid = 0;
        while (idOf(table[valid]) != kEndOfTable) ++valid;
        add(depth, fmt::format("{}: {}", title, countText(valid, table->count, element)));
        for (std::size_t i = 0; i < valid; ++i) addRecord(depth + 1, i, table[i]);
    }

    template <class Record>
    void addRecord(int depth, std::size_t position, const Record &record)
    {
        add(depth, fmt::format("{} {}{}{} (line {})", position, colours().good, ruleName(record),
                               colours().reset, session_.lineOf(&record)));
        if constexpr (requires { comparisonsOf(record); }) add(depth + 1, limitsText(record));
        for (const auto *property : shownOf(record))
            if (property->bound == Bound::None) addField(depth + 1, *property, record);
        addInner(depth + 1, record);
    }

    template <class Record, class Source>
    void addField(int depth, const Property<Record, Source> &property, const Record &record)
    {
        if (property.unit != Unit::Text && property.in(record) != 0)
            add(depth, fmt::format("{}: {}", property.attribute, property.in(record)));
        if (property.unit == Unit::Text && record.*property.field.text)
            add(depth,
                fmt::format("{}: {}", property.attribute, printable(record.*property.field.text)));
    }

    void addInner(int depth, const VideoRule &rule)
    {
        addTable(depth, "audio", "ACODEC", rule.pAudioTable);
    }
    void addInner(int depth, const AudioRule &rule)
    {
        addTable(depth, "containers", "FORMAT", rule.pFormatTable);
    }
    void addInner(int, const ContainerEntry &) {}

    const ProfileSession &session_;
    std::string text_;
};

// ---- JSON --------------------------------------------------------------------------------

template <class Record, class Source>
void addProperty(const Property<Record, Source> &property, const Record &record, Json &json)
{
    switch (property.unit) {
    case Unit::Text:
        json[property.name] = textOrNull(record.*property.field.text);
        break;
    case Unit::ProfileBits:
        json["profiles"] = profileTexts(property.in(record), idOf(record));
        json["profileBits"] = property.in(record);
        break;
    case Unit::ExceptionBits:
        json["playExceptions"] = playExceptionTexts(property.in(record));
        json["playExceptionBits"] = property.in(record);
        break;
    case Unit::Level:
        json["level"] = property.in(record);
        break;
    default:
        json[property.name] = property.in(record);
    }
}

template <class Record>
Json tableOf(const Record *table, const ProfileSession &session);

void addInner(const VideoRule &rule, const ProfileSession &session, Json &json)
{
    json["audio"] = tableOf(rule.pAudioTable, session);
}
void addInner(const AudioRule &rule, const ProfileSession &session, Json &json)
{
    json["containers"] = tableOf(rule.pFormatTable, session);
}
void addInner(const ContainerEntry &, const ProfileSession &, Json &)
{}

template <class Record>
Json tableOf(const Record *table, const ProfileSession &session)
{
    constexpr bool isContainer = std::is_same_v<Record, ContainerEntry>;
    if (!table) return nullptr;
    Json list = Json::array();
    for (; idOf(*table) != kEndOfTable; ++table) {
        Json json = {{"position", list.size()},
                     {"line", session.lineOf(table)},
                     {isContainer ? "container" : "codec", ruleName(*table)},
                     {isContainer ? "formatId" : "codecId", idOf(*table)}};
        for (const auto *property : shownOf(*table)) addProperty(*property, *table, json);
        addInner(*table, session, json);
        list.push_back(std::move(json));
    }
    return list;
}

} // namespace

std::string textOf(const ProfileSession &session)
{
    return Tree(session).write();
}

std::string jsonOf(const std::string &path, const ProfileSession &session)
{
    const TRANSCODE_DEVICE_PROFILE_ST &profile = session.profile();
    Json json = documentHead("vornak-profile", path);
    json["device"] = printable(profile.deviceName);
    json["warnings"] = session.warnings();
    json["music"] = tableOf<AudioRule>(profile.pAudioTable, session);
    json["video"] = tableOf<VideoRule>(profile.pVideoTable, session);
    return json.dump(2) + '\n';
}

} // namespace vornak::tool

#include "tools/commands/profile_show_json.h"

#include "base/rule_tables.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_session.h"
#include "tools/terminal/printable.h"

#include <nlohmann/json.hpp>

namespace vornak::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kVersion = 1;

Json textOrNull(const char *text)
{
    return text ? Json(printable(text)) : Json();
}

class JsonTables {
public:
    explicit JsonTables(const ProfileSession &session) : session_(session) {}

    template <class Record>
    Json tableOf(const Record *table) const
    {
        if (!table) return nullptr;
        Json list = Json::array();
        for (; idOf(*table) != kEndOfTable; ++table) {
            Json rule = {{"position", list.size()}, {"line", session_.lineOf(table)}};
            addFields(rule, *table);
            list.push_back(std::move(rule));
        }
        return list;
    }

private:
    void addFields(Json &json, const ContainerEntry &entry) const
    {
        json["container"] = containerText(entry.formatId);
        json["formatId"] = entry.formatId;
        json["mime"] = textOrNull(entry.mime);
        json["pn"] = textOrNull(entry.pn);
        json["option"] = textOrNull(entry.option);
        json["nonSeekable"] = entry.nonSeekable;
        json["noTranscode"] = entry.noTranscode;
    }

    void addFields(Json &json, const AudioRule &rule) const
    {
        json["codec"] = codecText(rule.aCodecId);
        json["codecId"] = rule.aCodecId;
        json["profiles"] = profileTexts(rule.aProfileId, rule.aCodecId);
        json["profileBits"] = rule.aProfileId;
        json["level"] = rule.aLevel;
        json["maxChannels"] = rule.maxChannels;
        json["minChannels"] = rule.minChannels;
        json["maxSampleRate"] = rule.maxSampleRate;
        json["minSampleRate"] = rule.minSampleRate;
        json["maxBitrate"] = rule.maxBitrate;
        json["minBitrate"] = rule.minBitrate;
        json["option"] = textOrNull(rule.option);
        json["noTranscode"] = rule.noTranscode;
        json["containers"] = tableOf(rule.pFormatTable);
    }

    void addFields(Json &json, const VideoRule &rule) const
    {
        json["codec"] = codecText(rule.vCodecId);
        json["codecId"] = rule.vCodecId;
        json["profiles"] = profileTexts(rule.vProfileId, rule.vCodecId);
        json["profileBits"] = rule.vProfileId;
        json["level"] = rule.vLevel;
        json["maxWidth"] = rule.maxWidth;
        json["maxHeight"] = rule.maxHeight;
        json["minWidth"] = rule.minWidth;
        json["minHeight"] = rule.minHeight;
        json["tolerance"] = rule.tolerance;
        json["maxBitrate"] = rule.maxBitrate;
        json["minBitrate"] = rule.minBitrate;
        json["playExceptions"] = playExceptionTexts(rule.playException);
        json["playExceptionBits"] = rule.playException;
        json["option"] = textOrNull(rule.option);
        json["vaTranscode"] = rule.vaTranscode;
        json["frame"] = rule.frame;
        json["noTranscode"] = rule.noTranscode;
        json["audio"] = tableOf(rule.pAudioTable);
    }

    const ProfileSession &session_;
};

} // namespace

std::string jsonOf(const std::string &path, const ProfileSession &session)
{
    const TRANSCODE_DEVICE_PROFILE_ST &profile = session.profile();
    const JsonTables tables(session);
    const Json json = {{"document", "vornak-profile"},
                       {"version", kVersion},
                       {"path", printable(path)},
                       {"pathHex", hexBytes(path)},
                       {"device", printable(profile.deviceName)},
                       {"warnings", session.warnings()},
                       {"music", tables.tableOf(profile.pAudioTable)},
                       {"video", tables.tableOf(profile.pVideoTable)}};
    return json.dump(2) + '\n';
}

} // namespace vornak::tool

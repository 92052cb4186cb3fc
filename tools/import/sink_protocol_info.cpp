#include "tools/import/sink_protocol_info.h"

#include "tools/import/names.h"

#include <string_view>

namespace vornak::tool {
namespace {

/// PROTOCOL:NETWORK:MIME:DETAILS, where the details are NAME=VALUE with semicolons between them.
SinkEntry readEntry(const std::string &text)
{
    constexpr std::string_view kProfile = "DLNA.ORG_PN=";
    SinkEntry entry{text, {}, {}};
    const std::vector<std::string> parts = splitList(text, ':');
    if (parts.size() < 3 || lowerCase(parts[0]) != "http-get") return entry;
    entry.mime = parts[2];
    if (parts.size() < 4) return entry;
    for (const std::string &detail : splitList(parts[3], ';'))
        if (detail.starts_with(kProfile)) entry.profile = detail.substr(kProfile.size());
    return entry;
}

} // namespace

std::vector<SinkEntry> readSinkProtocolInfo(const std::string &list)
{
    std::vector<SinkEntry> entries;
    std::string entry;
    const auto finish = [&] {
        for (const std::string &text : splitList(entry, '\n')) entries.push_back(readEntry(text));
        entry.clear();
    };
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i] == '\\' && i + 1 < list.size())
            entry += list[++i];
        else if (list[i] == ',')
            finish();
        else
            entry += list[i];
    }
    finish();
    return entries;
}

} // namespace vornak::tool

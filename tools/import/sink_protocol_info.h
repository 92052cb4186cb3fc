// What a player states that it takes: a list of protocolInfo, as it hands it out as its sink.
#pragma once

#include <string>
#include <vector>

namespace vornak::tool {

/// An entry's MIME type and DLNA profile.
struct SinkEntry {
    std::string text; ///< the entry as it is written
    std::string mime;
    std::string profile; ///< empty: it names none
};

/// The entries of a list, which commas separate; a backslash takes a comma into an entry.
std::vector<SinkEntry> readSinkProtocolInfo(const std::string &list);

} // namespace vornak::tool

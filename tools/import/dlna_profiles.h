// A player that takes DLNA profiles of given names, as gupnp-dlna's files describe them.
#pragma once

#include "tools/import/player.h"

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

/// @param path     of a file or of a folder of files
/// @param wanted   the profiles, those that are gladly given first; a MIME type narrows the choice
/// @param relaxed  the mode in which the files are read
/// Throws ProfileError, or a line for the user.
Player readDlnaProfiles(const std::string &path, const std::vector<SinkEntry> &wanted,
                        bool relaxed);

} // namespace vornak::tool

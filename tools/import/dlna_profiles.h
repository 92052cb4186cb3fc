// A player that takes DLNA profiles of given names, as gupnp-dlna's files describe them.
#pragma once

#include "tools/import/player.h"
#include "tools/import/sink_protocol_info.h"

#include <string>
#include <vector>

namespace vornak::tool {

/// @param path     of a file or of a folder of files
/// @param wanted   the profiles, those that are gladly given first; a MIME type narrows the choice
/// @param relaxed  the mode in which the files are read
/// Throws ImportError, or a line for the user.
Player readDlnaProfiles(const std::string &path, const std::vector<SinkEntry> &wanted,
                        bool relaxed);

} // namespace vornak::tool

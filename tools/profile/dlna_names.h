// What a server announces: DLNA's names of profiles, and MIME types.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// What a DLNA profile's name says of a file.
struct DlnaName {
    std::string name;
    std::vector<int> containers; ///< empty: any
    std::vector<int> pictures;   ///< empty: music
    std::vector<int> sounds;     ///< empty: any
};

/// Null for a name that isn't known.
const DlnaName *findDlnaName(std::string_view name);

std::vector<std::string> dlnaNames();

/// A name for such files; null: none is known. @param picture  codec, or -1 for music
const DlnaName *dlnaNameFor(int formatId, int picture, int sound);

/// Whether what a name says of containers or codecs takes this one.
bool allows(const std::vector<int> &ids, int id);

/// The MIME types of media, in lower case.
std::vector<std::string> mimeTypes();

} // namespace vornak::tool

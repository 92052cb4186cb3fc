// What a server announces: DLNA's names of profiles, and MIME types.
#pragma once

#include <compare>
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
    int profiles = 0;            ///< of the picture, as bits; 0: it says none
    int bestProfile = 0;         ///< the one of them that it is called after
    int soundProfiles = 0;       ///< of AAC, as bits; 0: it says none
    int width = 0, height = 0;   ///< the largest picture; 0: it says none
};

/// Files that a name is wanted for; 0 for what isn't known.
struct DlnaUse {
    int formatId, picture, sound;                          ///< the picture's codec, or -1 for music
    int profiles = 0, width = 0, height = 0, channels = 0; ///< the most that there may be
    int soundProfiles = 0;

    auto operator<=>(const DlnaUse &) const = default; // NOLINT: its zero is taken for a null
};

/// Null for a name that isn't known.
const DlnaName *findDlnaName(std::string_view name);

std::vector<std::string> dlnaNames();

/// A name for such files; a family such as "AVC_MP4_*" where too little is known to choose one, or
/// none of it fits; empty: none is known.
const std::string &dlnaNameFor(const DlnaUse &use);

/// Whether what a name says of containers or codecs takes this one.
bool allows(const std::vector<int> &ids, int id);

/// The MIME types of media, in lower case.
const std::vector<std::string> &mimeTypes();

/// A MIME type without its parameters, in lower case.
std::string bareMimeType(std::string_view mime);

bool isKnownMimeType(std::string_view mime);

/// What a MIME type says that isn't so of files in a container; empty: it fits, or isn't known.
std::string mimeContradiction(std::string_view mime, int formatId, bool isMusic);

} // namespace vornak::tool

// The part of a video's file name that the names of its subtitle files begin with.
#pragma once

#include "base/fixed_text.h"

#include <cstring>
#include <string_view>

namespace vornak {

/// The name up to its last point, or all of it; what lies past 1023 characters doesn't count.
inline std::string_view videoStem(std::string_view videoName)
{
    return videoName.substr(0, videoName.rfind('.')).substr(0, kPathSize - 1);
}

/// Whether an entry's name begins with the stem, letter case included.
inline bool belongsTo(const char *name, std::string_view stem)
{
    return std::strncmp(name, stem.data(), stem.size()) == 0;
}

/// Whether what follows the stem in a name is one of the extensions, a list ended by null.
bool isOneOf(const char *const *extensions, std::string_view rest);

} // namespace vornak

// How many media files there will be, for who shows how far the work has come.
#pragma once

#include "tools/files/media_list.h"

#include <cstddef>

namespace vornak::tool {

/// 0 where nobody sees it, or a list is to come.
std::size_t countMedia(const MediaNames &media);

} // namespace vornak::tool

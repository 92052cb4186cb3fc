#include "tools/files/count_media.h"

#include "tools/terminal/progress.h"

#include <algorithm>
#include <iostream>

namespace vornak::tool {

std::size_t countMedia(const MediaNames &media)
{
    if (!ProgressLine::isShown() || !media.probed.empty() ||
        std::ranges::count(media.arguments, "-") > 0)
        return 0;
    MediaList list(media, std::cin);
    std::size_t count = 0;
    while (list.next()) ++count;
    return count;
}

} // namespace vornak::tool

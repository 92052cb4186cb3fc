#include "base/directory.h"
#include "base/fixed_text.h"
#include "include/vornak.h"
#include "subtitle/video_stem.h"

#include <climits>

int findVideoSubtitle(const char *folder, const char *videoName, char *path)
{
    using namespace vornak;
    if (!folder || !videoName || !path) return 1;
    const std::string_view stem = videoStem(videoName);
    Directory directory(folder);
    if (!directory.isOpen()) return 1;
    while (const char *name = directory.next()) {
        if (!belongsTo(name, stem) || !isOneOf(g_supportSRT, name + stem.size())) continue;
        // The caller makes room for names of NAME_MAX; some file systems have longer ones.
        if (std::strlen(name) > NAME_MAX) continue;
        const std::size_t length = std::strlen(folder);
        copyCut(path, length + 1, folder);
        copyCut(path + length, NAME_MAX + 1, name);
        return 0;
    }
    return 1;
}

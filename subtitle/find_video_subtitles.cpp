#include "base/directory.h"
#include "base/fixed_text.h"
#include "include/vornak.h"
#include "subtitle/subtitle_list.h"
#include "subtitle/video_stem.h"

#include <cstdio>

int findVideoSubtitles(const char *folder, const char *videoName, VIDEO_SUBTITLE_ST *list,
                       int /*reserved*/)
{
    using namespace vornak;
    if (!folder || !videoName || !list) return 1;
    const std::string_view stem = videoStem(videoName);
    Directory directory(folder);
    if (!directory.isOpen()) return 1;
    SubtitleList found(list, folder);
    while (!found.isFull()) {
        const char *name = directory.next();
        if (!name) break;
        if (!belongsTo(name, stem)) continue;
        std::printf("-> %s\n", name);
        found.addMatches(name, stem.size(), g_support_subtitles);
    }
    if (directory.error() != 0) {
        found.undo();
        return 1;
    }
    found.end();
    return 0;
}

int findVideoSubtitlesByFullPath(const char *videoPath, VIDEO_SUBTITLE_ST *list, int reserved)
{
    using namespace vornak;
    if (!videoPath) return 1;
    const std::string_view path(videoPath);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return 1;
    // A folder too long for its buffer is refused, as the start of it would be another folder; a
    // name is cut.
    char folder[kPathSize], name[kPathSize];
    if (!FixedText(folder).append(path.substr(0, slash + 1))) return 1;
    copyCut(name, sizeof name, path.substr(slash + 1));
    return findVideoSubtitles(folder, name, list, reserved);
}

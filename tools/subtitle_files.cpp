#include "subtitle_files.h"

#include "vornak.h"

#include <algorithm>

namespace vornak::tool {
namespace {

constexpr std::string_view kUntagged = "unkown"; // the library's spelling

SubtitleFile describe(const VIDEO_SUBTITLE_ST &found)
{
    return {found.fileName, found.type == VORNAK_SUBTITLE_VTT ? "vtt" : "srt",
            found.lang == kUntagged ? "" : found.lang};
}

} // namespace

std::vector<SubtitleFile> findSubtitleFiles(const std::string &videoPath)
{
    const bool hasFolder = videoPath.find('/') != std::string::npos;
    std::vector<VIDEO_SUBTITLE_ST> list(VORNAK_SUBTITLE_LIST_SIZE);
    std::vector<SubtitleFile> files;
    if (findVideoSubtitlesByFullPath((hasFolder ? videoPath : "./" + videoPath).c_str(),
                                     list.data(), 0) != 0)
        return files;
    for (const VIDEO_SUBTITLE_ST &found : list) {
        if (found.type == VORNAK_SUBTITLE_END) break;
        files.push_back(describe(found));
    }
    std::sort(files.begin(), files.end(),
              [](const SubtitleFile &a, const SubtitleFile &b) { return a.name < b.name; });
    return files;
}

} // namespace vornak::tool

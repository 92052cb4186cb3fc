#include "subtitle_files.h"

#include "vornak.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace vornak::tool {
namespace {

constexpr std::string_view kUntagged = "unkown"; // the library's spelling

SubtitleFile describe(const VIDEO_SUBTITLE_ST &found)
{
    return {found.fileName, found.type == VORNAK_SUBTITLE_VTT ? "vtt" : "srt",
            found.lang == kUntagged ? "" : found.lang};
}

SubtitleSearch notSearched(const std::string &folder, int error)
{
    SubtitleSearch search;
    search.errorCode = folder.size() > 1023 ? "path-too-long" : "unreadable";
    search.error = folder.size() > 1023
                       ? "its folder's path is longer than 1023 characters"
                       : "its folder can't be read: " + std::generic_category().message(error);
    return search;
}

} // namespace

SubtitleSearch searchSubtitles(const std::string &videoPath)
{
    const bool hasFolder = videoPath.find('/') != std::string::npos;
    const std::string path = hasFolder ? videoPath : "./" + videoPath;
    const std::size_t start = path.rfind('/') + 1;
    const std::string folder = path.substr(0, start), name = path.substr(start);

    std::vector<VIDEO_SUBTITLE_ST> list(VORNAK_SUBTITLE_LIST_SIZE);
    if (findVideoSubtitlesByFullPath(path.c_str(), list.data(), 0) != 0)
        return notSearched(folder, errno);
    SubtitleSearch search;
    for (const VIDEO_SUBTITLE_ST &found : list) {
        if (found.type == VORNAK_SUBTITLE_END) break;
        search.files.push_back(describe(found));
    }
    std::sort(search.files.begin(), search.files.end(),
              [](const SubtitleFile &a, const SubtitleFile &b) { return a.name < b.name; });
    search.full = search.files.size() == VORNAK_SUBTITLE_LIST_SIZE - 1;
    char plain[VORNAK_SUBTITLE_PATH_SIZE];
    if (findVideoSubtitle(folder.c_str(), name.c_str(), plain) == 0)
        search.plainSrt = plain + folder.size();
    return search;
}

std::vector<SubtitleFile> findSubtitleFiles(const std::string &videoPath)
{
    return searchSubtitles(videoPath).files;
}

} // namespace vornak::tool

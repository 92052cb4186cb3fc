#include "tools/appliance/subtitle_files.h"

#include "include/vornak.h"
#include "tools/files/last_folder.h"

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

struct VideoPath {
    std::string folder, name; // the folder ends in '/'
};

VideoPath split(const std::string &videoPath)
{
    const std::size_t slash = videoPath.rfind('/');
    if (slash == std::string::npos) return {"./", videoPath};
    return {videoPath.substr(0, slash + 1), videoPath.substr(slash + 1)};
}

SubtitleSearch listSubtitles(const VideoPath &video)
{
    std::vector<VIDEO_SUBTITLE_ST> list(VORNAK_SUBTITLE_LIST_SIZE);
    const std::string path = video.folder + video.name;
    if (findVideoSubtitlesByFullPath(path.c_str(), list.data(), 0) != 0)
        return notSearched(video.folder, errno);
    SubtitleSearch search;
    for (const VIDEO_SUBTITLE_ST &found : list) {
        if (found.type == VORNAK_SUBTITLE_END) break;
        search.files.push_back(describe(found));
    }
    std::sort(search.files.begin(), search.files.end(),
              [](const SubtitleFile &a, const SubtitleFile &b) { return a.name < b.name; });
    search.full = search.files.size() == VORNAK_SUBTITLE_LIST_SIZE - 1;
    return search;
}

} // namespace

SubtitleSearch searchSubtitles(const std::string &videoPath)
{
    const VideoPath video = split(videoPath);
    SubtitleSearch search = listSubtitles(video);
    char plain[VORNAK_SUBTITLE_PATH_SIZE];
    if (search.error.empty() &&
        findVideoSubtitle(video.folder.c_str(), video.name.c_str(), plain) == 0)
        search.plainSrt = plain + video.folder.size();
    return search;
}

std::vector<SubtitleFile> findSubtitleFiles(const std::string &videoPath)
{
    thread_local LastFolder t_last;

    const VideoPath video = split(videoPath);
    const std::string_view stem = std::string_view(video.name).substr(0, video.name.rfind('.'));
    if (!t_last.mayHold(video.folder, stem)) return {};
    return listSubtitles(video).files;
}

} // namespace vornak::tool

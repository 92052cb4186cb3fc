#include "tools/appliance/subtitle_files.h"

#include "base/ascii_case.h"
#include "include/vornak.h"
#include "subtitle/subtitle_list.h"
#include "subtitle/video_stem.h"
#include "tools/files/folder_names.h"

#include <algorithm>
#include <climits>
#include <system_error>

namespace vornak::tool {
namespace {

constexpr std::string_view kUntagged = "unkown"; // the library's spelling
constexpr std::size_t kLongestFolder = 1023;     // that the library takes

/// Whether the library might list a file of this name beside some video.
bool mayBeSubtitle(std::string_view name)
{
    const std::string_view extension = name.substr(std::min(name.rfind('.'), name.size()));
    for (const VIDEO_SUBTITLE_ST *kind = g_support_subtitles; kind->type != VORNAK_SUBTITLE_END;
         ++kind)
        if (beginsIgnoringCase(extension, kind->ext) || endsIgnoringCase(name, kind->fullPath))
            return true;
    return std::any_of(g_supportSRT, std::end(g_supportSRT) - 1,
                       [&](const char *ending) { return endsIgnoringCase(name, ending); });
}

SubtitleFile describe(const VIDEO_SUBTITLE_ST &found)
{
    return {found.fileName, found.type == VORNAK_SUBTITLE_VTT ? "vtt" : "srt",
            found.lang == kUntagged ? "" : found.lang};
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

/// What findVideoSubtitles() lists of these names, which begin with the stem.
std::vector<SubtitleFile> listed(const std::vector<std::string_view> &names, std::size_t stem)
{
    if (names.empty()) return {};
    std::vector<VIDEO_SUBTITLE_ST> records(VORNAK_SUBTITLE_LIST_SIZE);
    SubtitleList list(records.data(), {});
    for (const std::string_view name : names) list.addMatches(name, stem, g_support_subtitles);
    list.end();
    std::vector<SubtitleFile> files;
    for (const VIDEO_SUBTITLE_ST &record : records) {
        if (record.type == VORNAK_SUBTITLE_END) break;
        files.push_back(describe(record));
    }
    std::ranges::sort(files, {}, &SubtitleFile::name);
    return files;
}

/// What findVideoSubtitle() finds among them.
std::optional<std::string> plainSrt(const std::vector<std::string_view> &names, std::size_t stem)
{
    for (const std::string_view name : names)
        if (isOneOf(g_supportSRT, name.substr(stem)) && name.size() <= NAME_MAX)
            return std::string(name);
    return std::nullopt;
}

} // namespace

SubtitleSearch searchSubtitles(const std::string &videoPath)
{
    static RecentFolders s_Folders(mayBeSubtitle);

    const VideoPath video = split(videoPath);
    SubtitleSearch search;
    if (video.folder.size() > kLongestFolder) {
        search.errorCode = "path-too-long";
        search.error = "its folder's path is longer than 1023 characters";
        return search;
    }
    const auto folder = s_Folders.find(video.folder);
    if (folder->error() != 0) {
        search.errorCode = "unreadable";
        search.error =
            "its folder can't be read: " + std::generic_category().message(folder->error());
        return search;
    }
    const std::string_view stem = videoStem(video.name);
    const auto names = folder->beginningWith(stem);
    search.files = listed(names, stem.size());
    search.full = search.files.size() == VORNAK_SUBTITLE_LIST_SIZE - 1;
    search.plainSrt = plainSrt(names, stem.size());
    return search;
}

} // namespace vornak::tool

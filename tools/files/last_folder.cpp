#include "tools/files/last_folder.h"

#include "base/ascii_case.h"
#include "base/directory.h"
#include "include/vornak.h"

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::size_t kMostNames = 10'000; // what is remembered has its bound

/// Whether the library might list a file of this name beside some video.
bool isSubtitle(std::string_view name)
{
    const std::string_view extension = name.substr(std::min(name.rfind('.'), name.size()));
    return std::ranges::any_of(g_support_subtitles, [&](const VIDEO_SUBTITLE_ST &kind) {
        return kind.type != VORNAK_SUBTITLE_END &&
               (beginsIgnoringCase(extension, kind.ext) || endsIgnoringCase(name, kind.fullPath));
    });
}

} // namespace

bool LastFolder::mayHold(const std::string &folder, std::string_view stem)
{
    if (!isUnchanged(folder)) read(folder);
    const auto next = std::ranges::lower_bound(names_, stem);
    return !isKnown_ || (next != names_.end() && next->starts_with(stem));
}

bool LastFolder::isUnchanged(const std::string &folder)
{
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0) return false;
    const std::timespec before = std::exchange(changed_, status.st_mtim);
    return path_ == folder && before.tv_sec == changed_.tv_sec &&
           before.tv_nsec == changed_.tv_nsec;
}

void LastFolder::read(const std::string &folder)
{
    path_ = folder;
    names_.clear();
    Directory directory(folder.c_str());
    while (const char *name = directory.isOpen() ? directory.next() : nullptr)
        if (isSubtitle(name) && names_.size() <= kMostNames) names_.emplace_back(name);
    isKnown_ = directory.isOpen() && directory.error() == 0 && names_.size() <= kMostNames;
    std::ranges::sort(names_);
}

} // namespace vornak::tool

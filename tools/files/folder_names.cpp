#include "tools/files/folder_names.h"

#include "base/directory.h"

#include <algorithm>
#include <cerrno>

namespace vornak::tool {
namespace {

// What is remembered beside the last folder has its bounds.
constexpr std::size_t kMostFolders = 64;
constexpr std::size_t kMostBytes = 4'000'000;

bool isSame(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

} // namespace

FolderNames::FolderNames(const std::string &folder, IsWanted isWanted)
{
    Directory directory(folder.c_str());
    if (!directory.isOpen()) {
        error_ = errno;
        return;
    }
    while (const char *name = directory.next()) {
        if (!isWanted(name)) continue;
        byName_.push_back(text_.size());
        text_.append(name).push_back('\0');
    }
    error_ = directory.error();
    std::ranges::sort(byName_, {}, [this](Place place) { return nameAt(place); });
}

std::vector<std::string_view> FolderNames::beginningWith(std::string_view start) const
{
    const auto first =
        std::ranges::lower_bound(byName_, start, {}, [this](Place place) { return nameAt(place); });
    const auto last = std::find_if_not(
        first, byName_.end(), [&](Place place) { return nameAt(place).starts_with(start); });
    std::vector<Place> places(first, last);
    std::ranges::sort(places);
    std::vector<std::string_view> names;
    names.reserve(places.size());
    for (const Place place : places) names.push_back(nameAt(place));
    return names;
}

std::shared_ptr<const FolderNames> RecentFolders::find(const std::string &folder)
{
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0)
        return std::make_shared<const FolderNames>(folder, isWanted_);

    const std::lock_guard lock(mutex_);
    const auto known =
        std::ranges::find_if(known_, [&](const Known &one) { return isSame(one.status, status); });
    if (known != known_.end())
        std::rotate(known, known + 1, known_.end());
    else
        known_.push_back({status, std::make_shared<const FolderNames>(folder, isWanted_)});
    auto names = known_.back().names;
    if (names->error() != 0) known_.pop_back(); // perhaps it can be read the next time
    dropOld();
    return names;
}

/// Keeps the last one whatever its size.
void RecentFolders::dropOld()
{
    std::size_t bytes = 0, kept = 0;
    for (auto one = known_.rbegin(); one != known_.rend(); ++one, ++kept) {
        if (one != known_.rbegin()) bytes += one->names->bytes();
        if (kept < kMostFolders && bytes <= kMostBytes) continue;
        known_.erase(known_.begin(), one.base());
        return;
    }
}

} // namespace vornak::tool

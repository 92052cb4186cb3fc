#include "tools/files/media_list.h"

#include "base/ascii_case.h"
#include "base/directory.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <functional>
#include <istream>
#include <iterator>
#include <sys/stat.h>
#include <system_error>

namespace vornak::tool {
namespace {

constexpr std::string_view s_MediaExtensions[] = {
    "264",  "265",  "3g2",  "3ga",  "3gp",  "3gp2",  "3gpp", "3gpp2", "aa3",   "aac",   "ac3",
    "adts", "aif",  "aifc", "aiff", "amr",  "amv",   "ape",  "asf",   "au",    "av1",   "avc",
    "avi",  "awb",  "caf",  "dff",  "dif",  "divx",  "dsf",  "dts",   "dtshd", "dv",    "dvr-ms",
    "eac3", "ec3",  "evo",  "f4a",  "f4b",  "f4p",   "f4v",  "flac",  "flv",   "gxf",   "h264",
    "h265", "hevc", "isma", "ismv", "ivf",  "latm",  "loas", "m1v",   "m2a",   "m2p",   "m2t",
    "m2ts", "m2v",  "m4a",  "m4b",  "m4p",  "m4r",   "m4v",  "mj2",   "mjp2",  "mjpeg", "mjpg",
    "mk3d", "mka",  "mkv",  "mlp",  "mod",  "mov",   "mp1",  "mp2",   "mp2v",  "mp3",   "mp4",
    "mp4v", "mpa",  "mpc",  "mpe",  "mpeg", "mpeg4", "mpg",  "mpg2",  "mpg4",  "mpv",   "mpv2",
    "mts",  "mxf",  "nsv",  "nut",  "obu",  "oga",   "ogg",  "ogm",   "ogv",   "ogx",   "oma",
    "omg",  "opus", "qt",   "ra",   "rcv",  "rm",    "rmvb", "shn",   "snd",   "spx",   "ssif",
    "tak",  "thd",  "tod",  "tp",   "trp",  "ts",    "tta",  "tts",   "vc1",   "vob",   "voc",
    "vqf",  "vro",  "w64",  "wav",  "wave", "weba",  "webm", "wm",    "wma",   "wmv",   "wtv",
    "wv",   "xvid", "y4m",
};
static_assert(std::is_sorted(std::begin(s_MediaExtensions), std::end(s_MediaExtensions)));

enum class Kind { Folder, File, LinkedFolder, Other };

Kind kindOfMode(mode_t mode)
{
    if (S_ISDIR(mode)) return Kind::Folder;
    return S_ISREG(mode) ? Kind::File : Kind::Other;
}

/// A link that leads nowhere counts as a file: opening it says what is wrong.
Kind kindOf(const Directory &folder, const dirent &entry)
{
    if (entry.d_type == DT_REG) return Kind::File;
    if (entry.d_type == DT_DIR) return Kind::Folder;
    struct stat info = {};
    const int at = folder.descriptor();
    if (fstatat(at, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISLNK(info.st_mode))
        return kindOfMode(info.st_mode);
    if (fstatat(at, entry.d_name, &info, 0) != 0) return Kind::File;
    return S_ISDIR(info.st_mode) ? Kind::LinkedFolder : kindOfMode(info.st_mode);
}

/// Folders of settings, thumbnails and things thrown away; "." and ".." among them.
bool isWalked(std::string_view folder)
{
    return !folder.starts_with('.') && folder != "@eaDir";
}

std::string textOf(int error)
{
    return std::generic_category().message(error);
}

} // namespace

bool hasMediaName(std::string_view name)
{
    const std::size_t point = name.rfind('.');
    if (point == std::string_view::npos || point == 0) return false;
    return std::binary_search(std::begin(s_MediaExtensions), std::end(s_MediaExtensions),
                              lowerCase(name.substr(point + 1)));
}

std::string MediaItem::openablePath() const
{
    if (!folder) return path;
    return "/proc/self/fd/" + std::to_string(folder->descriptor()) + path.substr(path.rfind('/'));
}

MediaList::MediaList(MediaNames names, std::istream &list, IsWanted isWanted)
    : names_(std::move(names)), list_(list), isWanted_(isWanted)
{
    std::ranges::reverse(names_.arguments);
}

std::optional<MediaItem> MediaList::next()
{
    for (;;) {
        std::optional<MediaItem> item;
        if (!folders_.empty())
            item = takeFromFolder();
        else if (std::optional<std::string> name = nextName())
            item = takeNamed(std::move(*name));
        else
            return std::nullopt;
        if (item) return item;
    }
}

/// The next file or folder that somebody named: an argument, or one of the list.
std::optional<std::string> MediaList::nextName()
{
    for (std::string name; readsList_;) {
        readsList_ = static_cast<bool>(std::getline(list_, name, names_.endInNull ? '\0' : '\n'));
        if (!names_.endInNull && name.ends_with('\r')) name.pop_back(); // of a system with CRLF
        if (readsList_ && !name.empty()) return name;
    }
    if (names_.arguments.empty()) return std::nullopt;
    std::string name = std::move(names_.arguments.back());
    names_.arguments.pop_back();
    if (name != "-") return name;
    readsList_ = true;
    return nextName();
}

std::optional<MediaItem> MediaList::takeNamed(std::string path)
{
    if (path.find('\0') != std::string::npos)
        return MediaItem{std::move(path), "the name holds a NUL byte; --null reads names that end "
                                          "in one, else give one a line"};
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) return MediaItem{std::move(path), textOf(errno)};
    switch (kindOfMode(info.st_mode)) {
    case Kind::Folder:
        if (path.back() != '/') path += '/';
        return enter(std::move(path));
    case Kind::File:
        return MediaItem{std::move(path), {}};
    default:
        return MediaItem{std::move(path), "neither a file nor a folder"};
    }
}

std::optional<MediaItem> MediaList::takeFromFolder()
{
    Folder &folder = folders_.back();
    if (folder.names.empty()) {
        folders_.pop_back();
        return std::nullopt;
    }
    std::string path = folder.path + folder.names.back();
    folder.names.pop_back();
    if (path.back() == '/') return enter(std::move(path));
    const bool isLong = path.size() >= PATH_MAX;
    return MediaItem{std::move(path), {}, isLong ? folder.open : nullptr};
}

/// Opens a folder that was named, or that lies in the one walked now.
std::shared_ptr<Directory> MediaList::open(const std::string &path) const
{
    if (folders_.empty() || !folders_.back().open) return std::make_shared<Directory>(path.c_str());
    const Folder &parent = folders_.back();
    return std::make_shared<Directory>(*parent.open, path.c_str() + parent.path.size());
}

/// Puts a folder's media and folders on the walk; an item only where the folder can't be read.
std::optional<MediaItem> MediaList::enter(std::string path)
{
    const std::shared_ptr<Directory> opened = open(path);
    if (!opened->isOpen()) return MediaItem{std::move(path), textOf(errno)};
    Folder folder{std::move(path), nullptr, {}};
    if (folder.path.size() + NAME_MAX >= PATH_MAX) folder.open = opened;
    while (const dirent *entry = opened->nextEntry()) {
        const std::string_view name = entry->d_name;
        const Kind kind = kindOf(*opened, *entry);
        if (kind == Kind::Folder && isWalked(name))
            folder.names.emplace_back(name) += '/';
        else if (kind == Kind::File && isWanted_(name) &&
                 !name.starts_with("._")) // where a file system without attributes keeps them
            folder.names.emplace_back(name);
        else if (kind == Kind::File || kind == Kind::Other)
            ++skipped_;
    }
    std::ranges::sort(folder.names, std::greater<>());
    std::optional<MediaItem> broken;
    if (opened->error() != 0)
        broken = MediaItem{folder.path, "not all of it can be read: " + textOf(opened->error())};
    folders_.push_back(std::move(folder));
    return broken;
}

} // namespace vornak::tool

#include "tools/files/media_list.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <dirent.h>
#include <functional>
#include <istream>
#include <iterator>
#include <memory>
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
Kind kindOf(const std::string &path, const dirent &entry)
{
    if (entry.d_type == DT_REG) return Kind::File;
    if (entry.d_type == DT_DIR) return Kind::Folder;
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return kindOfMode(info.st_mode);
    if (stat(path.c_str(), &info) != 0) return Kind::File;
    return S_ISDIR(info.st_mode) ? Kind::LinkedFolder : kindOfMode(info.st_mode);
}

struct CloseDir {
    void operator()(DIR *folder) const noexcept { closedir(folder); }
};

std::string textOf(int error)
{
    return std::generic_category().message(error);
}

} // namespace

bool hasMediaName(std::string_view name)
{
    const std::size_t point = name.rfind('.');
    if (point == std::string_view::npos || point == 0) return false;
    std::string extension(name.substr(point + 1));
    for (char &c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return std::binary_search(std::begin(s_MediaExtensions), std::end(s_MediaExtensions),
                              extension);
}

MediaList::MediaList(std::vector<std::string> arguments, std::istream &names)
    : arguments_(std::move(arguments)), names_(names)
{
    std::reverse(arguments_.begin(), arguments_.end());
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

/// The next file or folder that somebody named: an argument, or a line of the list.
std::optional<std::string> MediaList::nextName()
{
    for (std::string line; readsNames_;) {
        readsNames_ = static_cast<bool>(std::getline(names_, line));
        if (readsNames_ && !line.empty()) return line;
    }
    if (arguments_.empty()) return std::nullopt;
    std::string name = std::move(arguments_.back());
    arguments_.pop_back();
    if (name != "-") return name;
    readsNames_ = true;
    return nextName();
}

std::optional<MediaItem> MediaList::takeNamed(std::string path)
{
    if (path.find('\0') != std::string::npos)
        return MediaItem{std::move(path), "the name holds a NUL byte; give one name a line"};
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
    return MediaItem{std::move(path), {}};
}

/// Puts a folder's media and folders on the walk; an item only where the folder can't be read.
std::optional<MediaItem> MediaList::enter(std::string path)
{
    const std::unique_ptr<DIR, CloseDir> open(opendir(path.c_str()));
    if (!open) return MediaItem{std::move(path), textOf(errno)};
    Folder folder{std::move(path), {}};
    while (const dirent *entry = readdir(open.get())) {
        std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        const Kind kind = kindOf(folder.path + name, *entry);
        if (kind == Kind::Folder)
            folder.names.push_back(name + '/');
        else if (kind == Kind::File && hasMediaName(name))
            folder.names.push_back(std::move(name));
        else if (kind != Kind::LinkedFolder)
            ++skipped_;
    }
    std::sort(folder.names.begin(), folder.names.end(), std::greater<>());
    folders_.push_back(std::move(folder));
    return std::nullopt;
}

} // namespace vornak::tool

#include "tools/appliance/disc_title.h"

#include "include/vornak.h"

#include <algorithm>
#include <dirent.h>
#include <fmt/format.h>
#include <memory>
#include <strings.h>
#include <sys/stat.h>

namespace vornak::tool {
namespace {

struct CloseDir {
    void operator()(DIR *folder) const noexcept { closedir(folder); }
};

/// Whether a name is that of a part that the library counts for the title set.
bool isPartOf(const std::string &name, const std::string &firstPart)
{
    constexpr std::size_t kNumber = sizeof "VTS_nn_" - 1; // where the part's number stands
    constexpr std::size_t kTitle = kNumber - 1;           // what stands before it isn't looked at
    return name.size() >= firstPart.size() &&
           strncasecmp(name.c_str(), firstPart.c_str(), kTitle) == 0 && name[kNumber] >= '1' &&
           name[kNumber] <= '9' && strcasecmp(name.c_str() + name.size() - 4, ".VOB") == 0;
}

/// The library names the first part only; the others are looked up by the rule by which it
/// counts them.
std::vector<DiscPart> listParts(const DVD_FORMAT_ST &dvd)
{
    std::vector<DiscPart> parts;
    const std::unique_ptr<DIR, CloseDir> folder(opendir(dvd.folder));
    while (const dirent *entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string name = entry->d_name;
        struct stat info = {};
        if (isPartOf(name, dvd.fileName) && stat((dvd.folder + name).c_str(), &info) == 0)
            parts.push_back({name, info.st_size});
    }
    std::sort(parts.begin(), parts.end(), [](const DiscPart &left, const DiscPart &right) {
        return strcasecmp(left.name.c_str(), right.name.c_str()) < 0;
    });
    return parts;
}

DiscResult readDvd(const std::string &folder, const std::string &index, DiscTitle title)
{
    DVD_FORMAT_ST dvd;
    if (parseDVDFormat(folder.c_str(), index.c_str(), &dvd) != 0)
        return DiscError{"unreadable", "a DVD whose VIDEO_TS folder can't be read"};
    if (dvd.totalSize == 0)
        return DiscError{"no-title", "a DVD without a title: no VTS_nn_n.VOB holds anything"};
    title.kind = "DVD";
    title.number = dvd.titleNo;
    title.size = dvd.totalSize;
    title.parts = listParts(dvd);
    return title;
}

DiscResult readBluray(const std::string &root, const std::string &folder, const std::string &index,
                      DiscTitle title)
{
    BD_FORMAT_ST disc;
    if (parseBDFormat(folder.c_str(), index.c_str(), &disc) != 0)
        return DiscError{"no-title",
                         "a Blu-ray without a title: no .m2ts file in BDMV/STREAM holds anything"};
    title.kind = "Blu-ray";
    title.folder = disc.folder + root.size();
    title.size = disc.fileSize;
    title.parts = {{disc.fileName, disc.fileSize}};
    return title;
}

DiscError notADisc(const std::string &root)
{
    constexpr char kDvdIndex[] = "VIDEO_TS/VIDEO_TS.IFO", kBlurayIndex[] = "BDMV/index.bdmv";
    if (root.size() + sizeof kDvdIndex > 1024)
        return {"path-too-long", "the paths in it are longer than 1023 characters"};
    return {"not-a-disc",
            fmt::format("not a disc: it holds neither {} nor {}", kDvdIndex, kBlurayIndex)};
}

} // namespace

DiscResult readDisc(const std::string &root)
{
    char folder[1024], index[1024];
    const int kind =
        parseMountedFolder_v2(root.c_str(), folder, sizeof folder, index, sizeof index);
    if (kind != VORNAK_DISC_DVD && kind != VORNAK_DISC_BD) return notADisc(root);
    DiscTitle title;
    title.folder = folder + root.size();
    title.index = title.folder + index;
    return kind == VORNAK_DISC_DVD ? readDvd(folder, index, std::move(title))
                                   : readBluray(root, folder, index, std::move(title));
}

} // namespace vornak::tool

#include "tools/appliance/disc_title.h"

#include "base/directory.h"
#include "base/fixed_text.h"
#include "disc/disc_parts.h"
#include "include/vornak.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <strings.h>
#include <sys/stat.h>
#include <system_error>

namespace vornak::tool {
namespace {

std::string textOf(int error)
{
    return std::generic_category().message(error);
}

/// What a folder holds of a title.
struct Listing {
    std::vector<DiscPart> parts;
    std::vector<UncountedPart> uncounted; ///< of any title
    int error = 0;                        ///< errno where the folder can't be read to its end
};

/// The library says of a title only how large it is; its parts are looked up by the rule by which
/// the library counts them.
Listing listParts(const std::string &folder, int (*titleOfName)(std::string_view), int wanted)
{
    Listing listing;
    Directory directory(folder.c_str());
    if (!directory.isOpen()) listing.error = errno;
    while (const char *name = directory.isOpen() ? directory.next() : nullptr) {
        const int title = titleOfName(name);
        if (title == kNoTitle) continue;
        const std::string path = folder + name;
        struct stat info = {};
        if (path.size() >= kPathSize)
            listing.uncounted.push_back({name, ENAMETOOLONG});
        else if (stat(path.c_str(), &info) != 0)
            listing.uncounted.push_back({name, errno});
        else if (title == wanted)
            listing.parts.push_back({name, info.st_size});
    }
    if (directory.isOpen()) listing.error = directory.error();
    std::sort(listing.parts.begin(), listing.parts.end(),
              [](const DiscPart &left, const DiscPart &right) {
                  return strcasecmp(left.name.c_str(), right.name.c_str()) < 0;
              });
    return listing;
}

int isStreamPart(std::string_view name)
{
    return isStream(name) ? 0 : kNoTitle;
}

DiscError unreadable(const std::string &what, int error)
{
    return {"unreadable", fmt::format("{} can't be read: {}", printable(what), textOf(error))};
}

/// Why nothing was found where something may be.
std::optional<DiscError> whyUnreadable(const std::string &folder, const Listing &listing)
{
    if (listing.error != 0) return unreadable(folder, listing.error);
    if (listing.uncounted.empty()) return {};
    const UncountedPart &first = listing.uncounted.front();
    return unreadable(folder + first.name, first.error);
}

DiscResult readDvd(const std::string &folder, const std::string &index, DiscTitle title)
{
    DVD_FORMAT_ST dvd;
    if (parseDVDFormat(folder.c_str(), index.c_str(), &dvd) != 0)
        return unreadable(title.folder, errno);
    Listing listing = listParts(folder, titleOf, dvd.titleNo);
    if (listing.error != 0 || dvd.totalSize == 0)
        return whyUnreadable(title.folder, listing)
            .value_or(
                DiscError{"no-title", "a DVD without a title: no VTS_nn_n.VOB holds anything"});
    title.kind = "DVD";
    title.number = dvd.titleNo;
    title.size = dvd.totalSize;
    title.parts = std::move(listing.parts);
    title.uncounted = std::move(listing.uncounted);
    return title;
}

/// Looks for the reason why the library found no stream. @param error  the errno that it left, of
/// a call that failed, or of none that matters
DiscError whyNoStream(const std::string &bdmv, const std::string &shown, int error)
{
    const auto isWanted = [](std::string_view name) { return isStreamFolder(name) ? 0 : kNoTitle; };
    const Listing folders = listParts(bdmv, isWanted, 0);
    if (const auto why = whyUnreadable(shown, folders)) return *why;
    for (const DiscPart &streams : folders.parts) {
        const std::string name = streams.name + '/';
        const Listing listing = listParts(bdmv + name, isStreamPart, 0);
        if (const auto why = whyUnreadable(shown + name, listing)) return *why;
        if (std::ranges::any_of(listing.parts, &DiscPart::size)) return unreadable(shown, error);
    }
    return {"no-title", "a Blu-ray without a title: no .m2ts file in BDMV/STREAM holds anything"};
}

DiscResult readBluray(const std::string &root, const std::string &folder, const std::string &index,
                      DiscTitle title)
{
    BD_FORMAT_ST disc;
    if (parseBDFormat(folder.c_str(), index.c_str(), &disc) != 0)
        return whyNoStream(folder, title.folder, errno);
    title.folder = disc.folder + root.size();
    Listing listing = listParts(disc.folder, isStreamPart, kNoTitle);
    if (listing.error != 0) return *whyUnreadable(title.folder, listing);
    title.kind = "Blu-ray";
    title.size = disc.fileSize;
    title.parts = {{disc.fileName, disc.fileSize}};
    title.uncounted = std::move(listing.uncounted);
    return title;
}

DiscError notADisc(const std::string &root)
{
    constexpr char kDvdIndex[] = "VIDEO_TS/VIDEO_TS.IFO", kBlurayIndex[] = "BDMV/index.bdmv";
    if (root.size() + sizeof kDvdIndex > kPathSize)
        return {"path-too-long", "the paths in it are longer than 1023 characters"};
    for (const char *index : {kDvdIndex, kBlurayIndex}) {
        struct stat info = {};
        if (stat((root + index).c_str(), &info) != 0 && errno != ENOENT && errno != ENOTDIR)
            return unreadable(index, errno);
    }
    return {"not-a-disc",
            fmt::format("not a disc: it holds neither {} nor {}", kDvdIndex, kBlurayIndex)};
}

} // namespace

DiscResult readDisc(const std::string &root)
{
    char folder[kPathSize], index[kPathSize];
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

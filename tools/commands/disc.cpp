// vornak disc: what the library finds on a DVD or Blu-ray, in a folder or an image.
#include "tools/appliance/disc_title.h"
#include "tools/appliance/mounted_image.h"
#include "tools/appliance/shielded_work.h"
#include "tools/appliance/unmount_all.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/nearest_name.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <sstream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

namespace fs = std::filesystem;
constexpr const char *kDiscHelp =
    "Says whether a folder or an image is a DVD or a Blu-ray, and which files hold its main title";

constexpr const char *kDiscExamples = R"(Examples:
  vornak disc /media/films/holiday
      a folder that holds VIDEO_TS or BDMV
  sudo vornak disc film.iso
      an image: it is mounted, read and unmounted again, also after Ctrl-C
  sudo vornak disc --root /srv/jail /images/film.iso
      the same inside another root directory, with the programs that are there
  sudo vornak disc unmount-all
      unmounts what is left under /tmp/Trans_mount_*

Exit status: 0 the title was found, 1 it was not or some part could not be looked at, 2 bad usage.)";

constexpr const char *kUnmountAll = "unmount-all";

constexpr const char *kUnmountAllNotes =
    R"(The images are those mounted on /tmp/Trans_mount_*. An empty directory of that name is removed;
links, and what else strangers may have put there, are named and passed over.

Exit status: 0 no image is left, 1 some is, 2 bad usage.)";

struct Options {
    std::string path;
    MountPlace place;
    bool json = false;
};

bool isTooLong(const std::string &image)
{
    const std::size_t name = image.rfind('/') + 1; // 0 without a "/"
    return name > 1021 || image.size() - name > 1023;
}

/// Turns the root directory into one that may be named from anywhere, and works in it: the shell
/// there complains where it doesn't find the working directory.
std::optional<DiscError> enterRoot(Options &options)
{
    MountPlace &place = options.place;
    if (place.root.empty()) return {};
    if (options.path.front() != '/' ||
        (!place.mountPoint.empty() && place.mountPoint.front() != '/'))
        return DiscError{"relative-path", "with --root, paths begin with / and are inside it"};
    std::error_code error;
    const fs::path root = fs::canonical(place.root, error);
    if (!error) fs::current_path(root, error);
    if (error) return DiscError{"not-found", printable(place.root) + ": " + error.message()};
    place.root = root;
    return {};
}

DiscError mountFailure(const MountedImage &image, const MountPlace &place)
{
    if (image.placeError() == EEXIST)
        return {"mount-point-exists", printable(place.mountPoint) +
                                          ": the mount point is made, so it must not exist yet"};
    if (geteuid() != 0)
        return {"not-mounted", "can't be mounted: that needs root (or give the folder of a disc)"};
    if (const int error = image.placeError())
        return {"not-mounted",
                fmt::format("can't be mounted: {} can't be made: {}", printable(image.folder()),
                            std::generic_category().message(error))};
    return {"not-mounted", "can't be mounted: no image of a file system that the kernel knows, "
                           "or no loop device is free"};
}

DiscResult readImage(const Options &options)
{
    if (isTooLong(options.path))
        return DiscError{"path-too-long", "its path is longer than 1023 characters"};
    MountedImage image(options.path, options.place);
    if (!image.isMounted()) return mountFailure(image, options.place);
    DiscResult result = readDisc(image.folder());
    const std::string folder = image.folder();
    if (!image.unmount())
        return DiscError{"still-mounted", "can't be unmounted from " + printable(folder)};
    return result;
}

DiscResult read(Options options)
{
    if (const std::optional<DiscError> error = enterRoot(options)) return *error;
    struct stat info = {};
    if (stat((options.place.root + options.path).c_str(), &info) != 0)
        return DiscError{"not-found", std::generic_category().message(errno) +
                                          didYouMean(options.path, {kUnmountAll})};
    const bool isFolder = S_ISDIR(info.st_mode);
    if (!isFolder && !S_ISREG(info.st_mode) && !S_ISBLK(info.st_mode))
        return DiscError{"not-a-disc", "neither a folder nor an image"};
    if (!isFolder) return readImage(options);
    if (!options.place.root.empty() || !options.place.mountPoint.empty())
        return DiscError{"not-an-image",
                         "a folder is read as it is, without --root and --mount-point"};
    return readDisc(options.path + (options.path.back() == '/' ? "" : "/"));
}

std::string sizeText(std::int64_t bytes)
{
    if (bytes < 1'000'000) return fmt::format("{} bytes", bytes);
    const auto megabytes = static_cast<double>(bytes) / 1e6;
    return megabytes < 1000 ? fmt::format("{} bytes ({:.1f} MB)", bytes, megabytes)
                            : fmt::format("{} bytes ({:.1f} GB)", bytes, megabytes / 1000);
}

std::string textOf(const std::string &path, const DiscTitle &title)
{
    const std::size_t parts = title.parts.size();
    std::string text = fmt::format("{}: {}\n  index: {}\n  main title: {}{} part{}, {}\n",
                                   printable(path), title.kind, printable(title.index),
                                   title.number ? fmt::format("title set {}, ", *title.number) : "",
                                   parts, parts == 1 ? "" : "s", sizeText(title.size));
    for (const DiscPart &part : title.parts)
        text += fmt::format("    {}{}: {}\n", printable(title.folder), printable(part.name),
                            sizeText(part.size));
    return text;
}

Json jsonOf(const DiscTitle &title)
{
    Json parts = Json::array();
    for (const DiscPart &part : title.parts)
        parts.push_back({{"file", printable(part.name)},
                         {"fileHex", hexBytes(part.name)},
                         {"size", part.size}});
    Json uncounted = Json::array();
    for (const UncountedPart &part : title.uncounted)
        uncounted.push_back({{"file", printable(part.name)},
                             {"fileHex", hexBytes(part.name)},
                             {"message", std::generic_category().message(part.error)}});
    return {{"kind", title.kind == "DVD" ? "dvd" : "bluray"},
            {"index", printable(title.index)},
            {"folder", printable(title.folder)},
            {"titleSet", title.number ? Json(*title.number) : Json()},
            {"size", title.size},
            {"parts", std::move(parts)},
            {"uncounted", std::move(uncounted)}};
}

std::string documentOf(const std::string &path, const DiscResult &result)
{
    Json json = documentHead("vornak-disc", path);
    json.update({{"error", nullptr}, {"disc", nullptr}});
    if (const auto *error = std::get_if<DiscError>(&result))
        json["error"] = {{"code", error->code}, {"message", error->message}};
    else
        json["disc"] = jsonOf(std::get<DiscTitle>(result));
    return json.dump(2) + '\n';
}

/// What is wrong, a line each.
std::string complaintsOf(const std::string &path, const DiscResult &result)
{
    if (const auto *error = std::get_if<DiscError>(&result))
        return fmt::format("{}: {}\n", printable(path), error->message);
    std::string lines;
    const auto &title = std::get<DiscTitle>(result);
    for (const UncountedPart &part : title.uncounted)
        lines +=
            fmt::format("{}: {}{} is not counted: {}\n", printable(path), printable(title.folder),
                        printable(part.name), std::generic_category().message(part.error));
    return lines;
}

struct DiscReport {
    std::string out, complaints;
};

DiscReport reportOn(const Options &options)
{
    const DiscResult result = read(options);
    DiscReport report{{}, complaintsOf(options.path, result)};
    if (options.json)
        report.out = documentOf(options.path, result);
    else if (const auto *title = std::get_if<DiscTitle>(&result))
        report.out = textOf(options.path, *title);
    return report;
}

/// The same where an image is mounted for it, which must be unmounted whatever happens.
DiscReport reportOnImage(const Options &options)
{
    const std::string both = runShielded([&] {
        const DivertedOutput lost(STDERR_FILENO); // the shell that mounts may have something to say
        const DiscReport report = reportOn(options);
        return report.complaints + '\0' + report.out;
    });
    const std::size_t end = both.find('\0');
    return {both.substr(end + 1), both.substr(0, end)};
}

int runDisc(const Options &options)
{
    if (options.path.empty()) throw CLI::RequiredError("PATH");
    std::error_code ignored;
    const bool isFolder = fs::is_directory(options.place.root + options.path, ignored);
    const DiscReport report = isFolder ? reportOn(options) : reportOnImage(options);
    writeOut(report.out);
    std::istringstream complaints(report.complaints);
    for (std::string line; std::getline(complaints, line);) complain(line);
    return report.complaints.empty() ? kDone : kIncomplete;
}

} // namespace

void addDisc(CLI::App &app, int &status)
{
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand("disc", kDiscHelp);
    command->add_option("PATH", options->path, "Folder or image of a disc")->type_name("");
    command->add_option("--root", options->place.root, "Mount inside this root directory")
        ->type_name("DIR");
    command
        ->add_option("--mount-point", options->place.mountPoint,
                     "Mount on this directory, which is made and removed again, instead of a "
                     "fresh one under /tmp")
        ->type_name("DIR");
    command->add_flag("--json", options->json, "Print a JSON document");
    command->footer(kDiscExamples);

    CLI::App *sweep =
        command->add_subcommand(kUnmountAll, "Unmounts every image that the library has mounted");
    sweep->footer(kUnmountAllNotes);
    sweep->callback([&status] { status = unmountAll(); });
    command->require_subcommand(0, 1);
    command->callback([options, command, sweep, &status] {
        if (!command->got_subcommand(sweep)) status = runDisc(*options);
    });
}

} // namespace vornak::tool

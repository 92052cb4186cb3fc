#include "tools/collection/probe_files.h"

#include "tools/appliance/subtitle_files.h"
#include "tools/collection/probed_lines_file.h"
#include "tools/files/count_media.h"
#include "tools/files/ordered_work.h"
#include "tools/probe/probed_line.h"
#include "tools/terminal/output.h"
#include "tools/terminal/progress.h"

#include <iostream>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace vornak::tool {
namespace {

struct Task {
    MediaItem item;
    std::size_t skipped; ///< names that are no media, up to this file
};

/// A line in the making, with all that is written of it later.
struct Probed {
    std::string file, media, beside;
    std::size_t skipped = 0;
    bool isKnown = false;
    std::string complaint;

    std::string line(std::size_t skippedBefore) const
    {
        return joinLine({file, media, beside}, skippedBefore);
    }
};

std::optional<FileState> stateOf(const MediaItem &item)
{
    struct stat info = {};
    if (!item.error.empty() || stat(item.openablePath().c_str(), &info) != 0) return std::nullopt;
    constexpr std::int64_t kSecond = 1'000'000'000;
    return FileState{info.st_size, info.st_ctim.tv_sec * kSecond + info.st_ctim.tv_nsec};
}

/// The folder is looked at in any case: what lies beside the file has no state of its own.
std::string besideAgain(const std::string &path, std::string_view known)
{
    static const std::string s_OfNoVideo = besidePart(std::nullopt);
    return known == s_OfNoVideo ? s_OfNoVideo : besidePart(searchSubtitles(path));
}

void probe(const MediaItem &item, Probed &to)
{
    const ProbeResult result = item.error.empty()
                                   ? probeMedia(item.openablePath())
                                   : ProbeResult{std::nullopt, "cannot-open", item.error};
    to.media = mediaPart(result);
    to.beside =
        besidePart(result.media && result.media->video ? std::optional(searchSubtitles(item.path))
                                                       : std::nullopt);
    if (!result.media) to.complaint = aboutFile(item.path, result.error);
}

/// What keeps a known file from being decided about.
std::string knownComplaint(const std::string &path, std::string_view media, const std::string &line)
{
    if (media.starts_with(R"(,"error":null)")) return {};
    return aboutFile(path, readLine(line).probe.error);
}

Probed probeOrRecall(const Task &task, const ProbedLinesFile *lines)
{
    const MediaItem &item = task.item;
    const auto state = stateOf(item); // from before: what changes meanwhile is probed again
    Probed probed;
    probed.file = filePart(item.path, state);
    probed.skipped = task.skipped;
    const LineParts *known = lines && state ? lines->find(probed.file) : nullptr;
    if (!known || !isOpened(known->media)) { // who may open it is no property of the file
        probe(item, probed);
        return probed;
    }
    probed.isKnown = true;
    probed.media = known->media;
    probed.beside = besideAgain(item.path, known->beside);
    probed.complaint = knownComplaint(item.path, probed.media, probed.line(0));
    return probed;
}

} // namespace

// A line waits for the next file, or the end: what folders hold behind it belongs to it.
ProbeTotals probeFiles(const MediaNames &media, const ProbedLinesFile *known,
                       const std::function<void(std::string_view line, bool isNew)> &write)
{
    ProbeTotals totals;
    MediaList list(media, std::cin);
    FileProgress progress(countMedia(media));
    std::optional<Probed> last;
    std::size_t told = 0;
    const auto writeLast = [&](std::size_t skipped) {
        if (!last) return;
        write(last->line(skipped - told), !last->isKnown);
        told = skipped;
    };
    const auto next = [&]() -> std::optional<Task> {
        std::optional<MediaItem> item = list.next();
        if (!item) return std::nullopt;
        return Task{std::move(*item), list.skipped()};
    };
    const auto emit = [&](Probed &&probed) {
        writeLast(probed.skipped);
        if (!probed.complaint.empty()) complain(probed.complaint);
        ++totals.files;
        totals.known += probed.isKnown;
        totals.failed += !probed.complaint.empty();
        last = std::move(probed);
        progress.advance();
    };
    workInOrder(
        std::thread::hardware_concurrency(), next,
        [&](const Task &task) { return probeOrRecall(task, known); }, emit);
    writeLast(list.skipped());
    return totals;
}

} // namespace vornak::tool

#include "tools/collection/probe_files.h"

#include "tools/appliance/subtitle_files.h"
#include "tools/collection/probed_lines_file.h"
#include "tools/files/count_media.h"
#include "tools/files/ordered_work.h"
#include "tools/probe/probed_line.h"
#include "tools/terminal/output.h"
#include "tools/terminal/progress.h"

#include <chrono>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace vornak::tool {
namespace {

/// A line in the making, with all that is written of it later.
struct Probed {
    std::string file, media, beside;
    std::size_t skipped; ///< names that are no media, up to this file
    bool isKnown = false;
    std::string complaint = {};

    std::string line(std::size_t skippedBefore) const
    {
        return joinLine({file, media, beside}, skippedBefore);
    }
};

/// Files whose lines are known, and behind them perhaps one to be probed: so that a collection in
/// which nothing has changed takes no turns.
struct Batch {
    static constexpr std::size_t kMost = 64;

    std::vector<Probed> files;
    std::optional<MediaItem> last; ///< of the last file, which is still to be probed
    std::optional<std::int64_t> folderChanged = {}; ///< of its folder
};

std::optional<FileState> stateOf(const std::string &path)
{
    constexpr std::int64_t kSecond = 1'000'000'000; // in ns
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) return std::nullopt;
    return FileState{info.st_size, info.st_ctim.tv_sec * kSecond + info.st_ctim.tv_nsec};
}

/// When the folder was changed that the files of the walk lie in, asked once for those that follow
/// each other.
class CurrentFolder {
public:
    void enter(const std::string &path)
    {
        const std::string_view folder = std::string_view(path).substr(0, path.rfind('/') + 1);
        if (isKnown_ && folder == folder_) return;
        isKnown_ = true;
        folder_ = folder;
        changed_.reset();
        const auto state = stateOf(folder_.empty() ? "." : folder_);
        if (state && state->changed < settled()) changed_ = state->changed;
        start_ = besideStart(changed_) + ',';
    }

    std::optional<std::int64_t> changed() const { return changed_; }
    bool isUnchanged(std::string_view beside) const
    {
        return changed_ && beside.starts_with(start_);
    }

private:
    /// What was changed later may change again within the same tick of the file system's clock.
    static std::int64_t settled()
    {
        using namespace std::chrono;
        const auto now = system_clock::now().time_since_epoch() - milliseconds(50);
        return duration_cast<nanoseconds>(now).count();
    }

    bool isKnown_ = false;
    std::string folder_, start_;
    std::optional<std::int64_t> changed_;
};

std::string besideAgain(const std::string &path, std::string_view known,
                        const CurrentFolder &folder)
{
    static const std::string s_OfNoVideo = besidePart(std::nullopt, std::nullopt);
    if (known == s_OfNoVideo || folder.isUnchanged(known)) return std::string(known);
    return besidePart(searchSubtitles(path), folder.changed());
}

void probe(const MediaItem &item, std::optional<std::int64_t> folderChanged, Probed &to)
{
    const ProbeResult result = item.error.empty()
                                   ? probeMedia(item.openablePath())
                                   : ProbeResult{std::nullopt, "cannot-open", item.error};
    to.media = mediaPart(result);
    to.beside =
        besidePart(result.media && result.media->video ? std::optional(searchSubtitles(item.path))
                                                       : std::nullopt,
                   folderChanged);
    if (!result.media) to.complaint = aboutFile(item.path, result.error);
}

/// Takes what is known of the file. False: it is to be probed.
bool recall(const MediaItem &item, const LineParts *known, const CurrentFolder &folder, Probed &to)
{
    if (!known || !isOpened(known->media)) return false; // who may open it is no property of it
    to.isKnown = true;
    to.media = known->media;
    to.beside = besideAgain(item.path, known->beside, folder);
    if (!to.media.starts_with(R"(,"error":null)"))
        to.complaint = aboutFile(item.path, readLine(to.line(0)).probe.error);
    return true;
}

/// The next files; none at the end.
std::optional<Batch> nextBatch(MediaList &list, ProbedLinesFile *lines, CurrentFolder &folder)
{
    Batch batch;
    while (!batch.last && batch.files.size() < Batch::kMost) {
        std::optional<MediaItem> item = list.next();
        if (!item) break;
        // from before: what changes meanwhile is probed again
        const auto state = item->error.empty() ? stateOf(item->openablePath()) : std::nullopt;
        folder.enter(item->path);
        Probed &file =
            batch.files.emplace_back(Probed{filePart(item->path, state), {}, {}, list.skipped()});
        if (recall(*item, lines && state ? lines->find(file.file) : nullptr, folder, file))
            continue;
        batch.last = std::move(item);
        batch.folderChanged = folder.changed();
    }
    return batch.files.empty() ? std::nullopt : std::optional(std::move(batch));
}

} // namespace

// A line waits for the next file, or the end: what folders hold behind it belongs to it.
ProbeTotals probeFiles(const MediaNames &media, ProbedLinesFile *known,
                       const std::function<void(std::string_view line, bool isNew)> &write)
{
    ProbeTotals totals;
    MediaList list(media, std::cin);
    FileProgress progress(countMedia(media));
    std::optional<Probed> last;
    std::size_t told = 0;
    CurrentFolder folder;
    const auto writeLast = [&](std::size_t skipped) {
        if (!last) return;
        write(last->line(skipped - told), !last->isKnown);
        told = skipped;
    };
    const auto add = [&](Probed &&probed) {
        writeLast(probed.skipped);
        if (!probed.complaint.empty()) complain(probed.complaint);
        ++totals.files;
        totals.known += probed.isKnown;
        totals.failed += !probed.complaint.empty();
        last = std::move(probed);
        progress.advance();
    };
    workInOrder(
        std::thread::hardware_concurrency(), [&] { return nextBatch(list, known, folder); },
        [](Batch batch) {
            if (batch.last) probe(*batch.last, batch.folderChanged, batch.files.back());
            return batch;
        },
        [&](Batch &&batch) {
            for (Probed &file : batch.files) add(std::move(file));
        });
    writeLast(list.skipped());
    return totals;
}

} // namespace vornak::tool

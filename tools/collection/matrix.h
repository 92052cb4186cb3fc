// Many players, many files: each file is seen once, and decided about for every profile.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/files/count_media.h"
#include "tools/files/ordered_work.h"
#include "tools/terminal/output.h"
#include "tools/terminal/progress.h"

#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vornak::tool {

/// A profile that is asked about all files.
struct MatrixColumn {
    std::string path; ///< as given
    std::string name; ///< without folder and ending, where that tells the profiles apart
    std::optional<ProfileSession> session;
    std::string error; ///< why there is none
};

/// Loads the profiles, and says what the library warns of and which can't be loaded. Before the
/// first thread starts.
std::vector<MatrixColumn> loadColumns(const std::vector<std::string> &paths);

/// Whether some profile can't be loaded.
bool lacksPlayer(const std::vector<MatrixColumn> &columns);

/// The profiles in a folder, by the names that end in ".xml", in their order. Throws
/// std::runtime_error for a folder that can't be read or has none.
std::vector<std::string> profilesIn(const std::string &folder);

/// What becomes of a file, by column; none where the profile can't be loaded.
using MatrixResults = std::vector<std::optional<FileResult>>;

struct MatrixTotals {
    std::vector<Totals> columns;
    std::size_t files = 0;
    std::size_t skipped = 0;    ///< in folders, what is no media
    std::size_t unreadable = 0; ///< files that nobody can decide about
};

/// What a profile makes of a file: any thread.
FileResult decideColumn(const MatrixColumn &column, const DecisionRequest &request,
                        const ProbeResult &probe);

/**
 * Decides about all the media, says on standard error which are unreadable, and shows how far it
 * has come.
 * @param look  (const SeenFile &, const MatrixResults &): what is to be known of a file; on many
 *              threads
 * @param emit  (what look() gave, MatrixTotals &): one at a time, in the order of the files
 */
template <class Look, class Emit>
MatrixTotals decideMatrix(const std::vector<MatrixColumn> &columns, const DecisionRequest &request,
                          const MediaNames &media, Look look, Emit emit)
{
    struct Row {
        std::invoke_result_t<Look &, const SeenFile &, const MatrixResults &> seen;
        std::vector<std::optional<Outcome>> outcomes;
        std::string complaint;
    };
    MatrixTotals totals;
    totals.columns.resize(columns.size());
    const auto source = openMedia(media);
    FileProgress progress(countMedia(media));

    const auto work = [&](const MediaSource::Look &see) {
        const SeenFile file = see();
        MatrixResults results(columns.size());
        std::vector<std::optional<Outcome>> outcomes(columns.size());
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!columns[i].session) continue;
            results[i] = decideColumn(columns[i], request, file.probe);
            outcomes[i] = outcomeOf(*results[i]);
        }
        return Row{look(file, results), std::move(outcomes),
                   file.probe.media ? "" : aboutFile(file.path, file.probe.error)};
    };
    const auto count = [&](Row &&row) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (row.outcomes[i]) totals.columns[i].add(*row.outcomes[i]);
        if (!row.complaint.empty()) complain(row.complaint);
        totals.unreadable += !row.complaint.empty();
        ++totals.files;
        emit(std::move(row.seen), totals);
        progress.advance();
    };
    workInOrder(
        std::thread::hardware_concurrency(), [&] { return source->next(); }, work, count);
    totals.skipped = source->skipped();
    return totals;
}

} // namespace vornak::tool

#include "tools/collection/decision_diff.h"

#include "tools/collection/expectation.h"

#include <fmt/format.h>

namespace vornak::tool {

bool areDecidedAlike(const std::vector<MatrixColumn> &both, const MediaNames &media)
{
    useColours(ColourUse::Never);
    const DecisionRequest request;
    std::size_t changed = 0;
    const MatrixTotals totals = decideMatrix(
        both, request, media,
        [&](const SeenFile &file, const MatrixResults &results) {
            return changeText(cellOf(both[0], file.path, *results[0], request),
                              cellOf(both[1], file.path, *results[1], request));
        },
        [&](const std::string &text, MatrixTotals &) {
            writeOut(text);
            changed += !text.empty();
        });
    const std::string unreadable =
        totals.unreadable > 0 ? fmt::format(", {} unreadable", totals.unreadable) : "";
    writeOut(fmt::format("{}{} {}: {} decided alike, {} otherwise{}\n", changed > 0 ? "\n" : "",
                         totals.files, totals.files == 1 ? "file" : "files",
                         totals.files - changed - totals.unreadable, changed, unreadable));
    return changed + totals.unreadable == 0;
}

} // namespace vornak::tool

#include "tools/collection/matrix.h"

#include "tools/profile/profile_document.h"
#include "tools/profile/profile_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <stdexcept>

namespace vornak::tool {
namespace {

namespace fs = std::filesystem;

constexpr const char *kExtension = ".xml";

/// "tv" of "profiles/tv.xml"
std::string shortName(const std::string &path)
{
    const fs::path name(profileTitle(path));
    return name.extension() == kExtension ? name.stem() : name.filename();
}

MatrixColumn loadColumn(const std::string &path)
{
    MatrixColumn column{path, shortName(path), {}, {}};
    try {
        column.session.emplace(path);
        complainOfWarnings(path, *column.session);
    } catch (const ProfileError &error) {
        column.error = error.what();
        complain(column.error);
    }
    return column;
}

} // namespace

std::vector<MatrixColumn> loadColumns(const std::vector<std::string> &paths)
{
    std::map<std::string, int> uses;
    for (const std::string &path : paths) ++uses[shortName(path)];
    std::vector<MatrixColumn> columns;
    for (const std::string &path : paths) {
        columns.push_back(loadColumn(path));
        if (uses[columns.back().name] > 1) columns.back().name = profileTitle(path);
    }
    return columns;
}

bool lacksPlayer(const std::vector<MatrixColumn> &columns)
{
    return std::ranges::any_of(columns, [](const MatrixColumn &column) { return !column.session; });
}

std::vector<std::string> profilesIn(const std::string &folder)
{
    std::vector<std::string> paths;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().extension() == kExtension) paths.push_back(entry->path());
    if (error)
        throw std::runtime_error(
            fmt::format("--profiles {}: can't be read: {}", printable(folder), error.message()));
    if (paths.empty())
        throw std::runtime_error(
            fmt::format("--profiles {}: no file in it ends in .xml", printable(folder)));
    std::ranges::sort(paths);
    return paths;
}

FileResult decideColumn(const MatrixColumn &column, const DecisionRequest &request,
                        const ProbeResult &probe)
{
    if (!probe.media) return Undecided{probe.code, probe.error};
    return decide(*column.session, request, *probe.media);
}

} // namespace vornak::tool

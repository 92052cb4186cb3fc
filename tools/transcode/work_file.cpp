#include "tools/transcode/work_file.h"

#include "tools/terminal/printable.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>

namespace vornak::tool {
namespace {

[[noreturn]] void refuse(const std::string &path, std::string_view why)
{
    throw std::runtime_error(fmt::format("{}: {}", printable(path), why));
}

[[noreturn]] void refuse(const std::string &path, int error)
{
    refuse(path, std::generic_category().message(error));
}

} // namespace

WorkFile::WorkFile(const std::string &folder) : folder_(folder + "/.vornak-XXXXXX")
{
    if (mkdtemp(folder_.data())) {
        path_ = folder_ + "/output";
        return;
    }
    const int error = errno;
    throw std::runtime_error(fmt::format("can't write into {}: {}", printable(folder),
                                         std::generic_category().message(error)));
}

WorkFile::~WorkFile()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void WorkFile::moveTo(const std::string &target, bool replace)
{
    const unsigned flags = replace ? 0 : RENAME_NOREPLACE;
    int failed = renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), flags);
    if (failed != 0 && errno == EINVAL) // a file system that can only replace
        failed = rename(path_.c_str(), target.c_str());
    if (failed != 0) refuse(target, errno);
}

std::string outputPlace(const std::string &path, bool replace)
{
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) {
        if (errno == ENOENT) return path;
        refuse(path, errno);
    }
    if (!replace) refuse(path, "exists already and is kept; --force replaces it");
    if (stat(path.c_str(), &info) != 0) refuse(path, errno);
    if (!S_ISREG(info.st_mode)) refuse(path, "is no regular file, so it can't be replaced");
    return std::filesystem::canonical(path);
}

} // namespace vornak::tool

#include "tools/collection/probed_lines_file.h"

#include "tools/terminal/printable.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr std::string_view kPart = ".part"; // in the making
constexpr std::string_view kOld = ".part.old";
constexpr std::size_t kBlock = 1 << 18;

/// All that the file holds from where it stands. False: see errno.
bool readAll(int file, std::string &text)
{
    struct stat info = {};
    if (fstat(file, &info) != 0) return false;
    text.reserve(static_cast<std::size_t>(info.st_size) + 1);
    std::array<char, kBlock> block;
    for (;;) {
        const ssize_t got = read(file, block.data(), block.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return got == 0;
        text.append(block.data(), static_cast<std::size_t>(got));
    }
}

bool writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Opens a file that is this user's alone: nobody else has prepared it, or leads elsewhere by it.
int openOwn(int folder, const std::string &name, int flags)
{
    const int opened =
        openat(folder, name.c_str(), flags | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
    struct stat info = {};
    if (opened < 0 || fstat(opened, &info) != 0) return opened;
    if (S_ISREG(info.st_mode) && info.st_uid == geteuid() && info.st_nlink == 1) return opened;
    close(opened);
    errno = EEXIST;
    return -1;
}

int openOld(const OutputPlace &place)
{
    return openat(place.folder(), place.name().c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
}

bool isNamed(int folder, const std::string &name, int file)
{
    struct stat named = {}, opened = {};
    return fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           fstat(file, &opened) == 0 && named.st_ino == opened.st_ino;
}

} // namespace

ProbedLinesFile::ProbedLinesFile(const std::string &path) : place_(path, true)
{
    place_.refuseOther(kLineStart, "the lines of vornak probe");
    lock();
    keepPart();
    const Descriptor file(openOld(place_));
    if (!file && errno == ENOENT) return;
    struct stat info = {};
    if (!file || !readAll(file.get(), old_) || fstat(file.get(), &info) != 0 ||
        fchmod(part_->get(), info.st_mode & 0777) != 0)
        fail("");
    same_ = 0;
    learn(old_);
}

std::string ProbedLinesFile::nameWith(std::string_view ending) const
{
    return place_.name() + std::string(ending);
}

void ProbedLinesFile::fail(const std::string &name) const
{
    const int error = errno;
    throw std::runtime_error(fmt::format("{}{}: {}", printable(place_.path()), name,
                                         std::generic_category().message(error)));
}

/// Whoever had the part before may have moved it away meanwhile.
void ProbedLinesFile::lock()
{
    const std::string name = nameWith(kPart);
    do {
        part_.emplace(openOwn(place_.folder(), name, O_RDWR | O_APPEND));
        if (!*part_) fail(std::string(kPart));
        if (flock(part_->get(), LOCK_EX | LOCK_NB) != 0)
            throw std::runtime_error(
                fmt::format("{}: another vornak probe is writing it", printable(place_.path())));
    } while (!isNamed(place_.folder(), name, part_->get()));
}

/// What a killed run has left joins what others left, so that nothing of it is lost if this one is
/// killed as well.
void ProbedLinesFile::keepPart()
{
    std::string left;
    if (!readAll(part_->get(), left)) fail(std::string(kPart));
    const std::string name = nameWith(kOld);
    if (left.empty() && faccessat(place_.folder(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0)
        return;
    const Descriptor old(openOwn(place_.folder(), name, O_RDWR | O_APPEND));
    if (!old || !writeAll(old.get(), left.empty() ? left : left + '\n') ||
        lseek(old.get(), 0, SEEK_SET) != 0 || !readAll(old.get(), leftover_))
        fail(std::string(kOld));
    if (ftruncate(part_->get(), 0) != 0) fail(std::string(kPart));
    learn(leftover_);
}

void ProbedLinesFile::learn(const std::string &text)
{
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (const auto parts = splitLine(line)) lines_.push_back(*parts);
    }
}

const LineParts *ProbedLinesFile::find(std::string_view filePart)
{
    if (expected_ >= lines_.size() || lines_[expected_].file != filePart) {
        if (places_.empty())
            for (std::size_t i = 0; i < lines_.size(); ++i) places_[lines_[i].file] = i;
        const auto found = places_.find(filePart);
        if (found == places_.end()) return nullptr;
        expected_ = found->second;
    }
    return &lines_[expected_++];
}

void ProbedLinesFile::add(std::string_view line, bool isNew)
{
    if (same_ && std::string_view(old_).substr(*same_).starts_with(line)) {
        *same_ += line.size();
        return;
    }
    leaveOldLines();
    pending_ += line;
    if (isNew || pending_.size() > kBlock) flush();
}

/// From here on the lines are others than those that the file has.
void ProbedLinesFile::leaveOldLines()
{
    if (same_) pending_.assign(old_, 0, *same_);
    same_.reset();
}

void ProbedLinesFile::flush()
{
    if (!writeAll(part_->get(), pending_)) fail(std::string(kPart));
    pending_.clear();
}

void ProbedLinesFile::finish()
{
    const int folder = place_.folder();
    const std::string part = nameWith(kPart);
    if (same_ == old_.size()) {
        if (unlinkat(folder, part.c_str(), 0) != 0) fail(std::string(kPart));
    } else {
        leaveOldLines();
        flush();
        if (fsync(part_->get()) != 0) fail(std::string(kPart));
        if (renameat(folder, part.c_str(), folder, place_.name().c_str()) != 0) fail("");
    }
    unlinkat(folder, nameWith(kOld).c_str(), 0);
}

} // namespace vornak::tool

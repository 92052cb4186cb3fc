#include "tools/decide/media_source.h"

#include "tools/appliance/subtitle_files.h"
#include "tools/probe/probed_line.h"
#include "tools/terminal/printable.h"

#include <atomic>
#include <cerrno>
#include <fmt/format.h>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace vornak::tool {
namespace {

class Files : public MediaSource {
public:
    explicit Files(const MediaNames &media) : list_(media, std::cin) {}

    std::optional<Look> next() override
    {
        std::optional<MediaItem> item = list_.next();
        if (!item) return std::nullopt;
        return [item = std::move(*item)]() -> SeenFile {
            if (!item.error.empty()) return {item.path, {{}, "cannot-open", item.error}, {}};
            return {item.path, probeMedia(item.openablePath()), {}};
        };
    }

    std::size_t skipped() const override { return list_.skipped(); }

private:
    MediaList list_;
};

class Lines : public MediaSource {
public:
    explicit Lines(const std::string &path)
        : title_(path == "-" ? "standard input" : printable(path)),
          buffer_(std::make_unique_for_overwrite<char[]>(kMost))
    {
        if (path != "-") file_.open(path, std::ios::binary);
        if (!file_) throw std::system_error(errno, std::generic_category(), title_);
    }

    std::optional<Look> next() override
    {
        for (std::string line; readNext(line);)
            if (!line.empty())
                return
                    [this, line = std::move(line), number = number_] { return see(line, number); };
        return std::nullopt;
    }

    std::size_t skipped() const override { return skipped_; }

private:
    static constexpr std::streamsize kMost = 16'000'000; // bytes of a line, thousands of tracks

    [[noreturn]] void refuse(std::size_t line, std::string_view why) const
    {
        throw std::runtime_error(fmt::format("{}:{}: {}", title_, line, why));
    }

    /// False at the end.
    bool readNext(std::string &line)
    {
        std::istream &in = file_.is_open() ? file_ : std::cin;
        if (!in) return false; // also of another thread, while one says what is wrong
        in.getline(buffer_.get(), kMost);
        ++number_;
        if (in.bad()) refuse(number_, "can't be read");
        if (in.fail() && !in.eof()) refuse(number_, "longer than any line of vornak probe");
        const std::streamsize lineEnd = in.eof() ? 0 : 1;
        line.assign(buffer_.get(), static_cast<std::size_t>(in.gcount() - lineEnd));
        return !in.fail();
    }

    SeenFile see(const std::string &line, std::size_t number)
    {
        try {
            ProbedFile file = readLine(line);
            skipped_ += file.skipped;
            // of no video there is none to look for
            return {std::move(file.path), std::move(file.probe),
                    file.subtitles.value_or(SubtitleSearch())};
        } catch (const std::runtime_error &error) {
            refuse(number, error.what());
        }
    }

    std::string title_;
    std::ifstream file_; ///< not open: standard input
    std::unique_ptr<char[]> buffer_;
    std::size_t number_ = 0; ///< of the line that was read last
    std::atomic<std::size_t> skipped_ = 0;
};

} // namespace

SubtitleSearch SeenFile::subtitles() const
{
    return beside ? *beside : searchSubtitles(path);
}

std::unique_ptr<MediaSource> openMedia(const MediaNames &media)
{
    if (media.probed.empty()) return std::make_unique<Files>(media);
    return std::make_unique<Lines>(media.probed);
}

SeenFile seeFile(const std::string &path)
{
    return {path, probeMedia(path), {}};
}

SeenFile seeOnlyLine(const std::string &probed)
{
    Lines lines(probed);
    const auto look = lines.next();
    if (!look || lines.next())
        throw std::runtime_error(
            fmt::format("{}: it must hold one line here, that of the file", printable(probed)));
    return (*look)();
}

} // namespace vornak::tool

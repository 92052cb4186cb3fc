#include "tools/decide/media_source.h"

#include "tools/appliance/subtitle_files.h"
#include "tools/files/text_lines.h"
#include "tools/probe/probed_line.h"
#include "tools/terminal/printable.h"

#include <atomic>
#include <fmt/format.h>
#include <iostream>
#include <stdexcept>

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
    explicit Lines(const std::string &path) : lines_(path) {}

    std::optional<Look> next() override
    {
        for (std::string line; lines_.next(line);)
            if (!line.empty())
                return [this, line = std::move(line), number = lines_.number()] {
                    return see(line, number);
                };
        return std::nullopt;
    }

    std::size_t skipped() const override { return skipped_; }

private:
    SeenFile see(const std::string &line, std::size_t number)
    {
        try {
            ProbedFile file = readLine(line);
            skipped_ += file.skipped;
            // of no video there is none to look for
            return {std::move(file.path), std::move(file.probe),
                    file.subtitles.value_or(SubtitleSearch())};
        } catch (const std::runtime_error &error) {
            lines_.refuse(number, error.what());
        }
    }

    TextLines lines_;
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

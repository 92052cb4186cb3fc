// A media file that is open for reading, with what libavformat found in it.
#pragma once

#include "base/descriptor.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct AVFormatContext;
struct AVIOContext;

namespace vornak::tool {

/// What is said of a file that libavformat can make nothing of.
constexpr const char *kNotMedia = "is no media file, or a damaged one";

class MediaFile {
public:
    /// Opens the file and looks for its streams. On failure context() is null and error() says
    /// what is wrong.
    explicit MediaFile(const std::string &path);
    MediaFile(const MediaFile &) = delete; // libavformat holds its address
    MediaFile &operator=(const MediaFile &) = delete;

    AVFormatContext *context() const { return context_.get(); }
    const std::string &error() const { return error_; }
    std::int64_t size() const { return size_; }

    /// What the header says, in bits per second, before anything is guessed from packets; 0:
    /// nothing, or the stream has turned up since.
    std::int64_t headerBitrate(int stream) const;

    /// From now on the file ends for libavformat after so many bytes more: some files can be
    /// sought in by reading all of them only.
    void limitReading(std::int64_t bytes) { readable_ = bytes; }

    /// The file's first bytes, as many as fit and there are; the reading position stays.
    std::span<const std::uint8_t> readStart(std::span<std::uint8_t> buffer) const;

private:
    struct CloseIo {
        void operator()(AVIOContext *io) const;
    };
    struct CloseContext {
        void operator()(AVFormatContext *context) const;
    };

    bool isRegularFile();
    void openMedia(const std::string &path);
    static int readNext(void *self, std::uint8_t *buffer, int size);
    static std::int64_t seek(void *self, std::int64_t offset, int whence);

    Descriptor descriptor_;
    std::int64_t size_ = 0;
    std::int64_t position_ = 0;
    std::int64_t readable_ = std::numeric_limits<std::int64_t>::max();
    std::vector<std::int64_t> headerBitrates_; ///< one a stream
    std::unique_ptr<AVIOContext, CloseIo> io_;
    std::unique_ptr<AVFormatContext, CloseContext> context_; // reads through what is above
    std::string error_;
};

} // namespace vornak::tool

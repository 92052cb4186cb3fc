// A media file that is open for reading, with what libavformat found in it.
#pragma once

#include "base/descriptor.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct AVFormatContext;
struct AVIOContext;

namespace vornak::tool {

/// What is said of a file that libavformat can make nothing of.
constexpr const char *kNotMedia = "is no media file, or a damaged one";

/// How far into a file its streams are looked for. Most tell what they are in their first packets;
/// a broadcast that was cut may do so some seconds later.
enum class Search { Usual, Far };

class MediaFile {
public:
    /// Opens the file and looks for its streams, within bounds whatever the file holds: behind the
    /// end of an unfinished download there may be terabytes of zeros. On failure context() is null
    /// and error() says what is wrong.
    MediaFile(const std::string &path, Search search);
    MediaFile(const MediaFile &) = delete; // libavformat holds its address
    MediaFile &operator=(const MediaFile &) = delete;

    AVFormatContext *context() const { return context_.get(); }
    const std::string &error() const { return error_; }
    bool isOpen() const { return isOpen_; } ///< as a file with something in it
    std::int64_t size() const { return size_; }
    std::int64_t dataStart() const { return dataStart_; } ///< behind the header

    /// What the header says, in bits per second, before anything is guessed from packets; 0:
    /// nothing, or the stream has turned up since. A codec whose frames name their rate has that
    /// in its parameters.
    std::int64_t headerBitrate(int stream) const;

    /// From now on the file ends for libavformat after so many bytes more: some files can be
    /// sought in by reading all of them only.
    void limitReading(std::int64_t bytes) { readable_ = bytes; }
    bool isAtLimit() const { return readable_ <= 0; }

    /// The file's first bytes, as many as fit and there are; the reading position stays.
    std::span<const std::uint8_t> readStart(std::span<std::uint8_t> buffer) const;

private:
    struct CloseIo {
        void operator()(AVIOContext *io) const;
    };
    struct CloseContext {
        void operator()(AVFormatContext *context) const;
    };

    bool isFileWithContent();
    void openMedia(const std::string &path);
    void findStreams(Search search);
    static int readNext(void *self, std::uint8_t *buffer, int size);
    static std::int64_t seek(void *self, std::int64_t offset, int whence);

    Descriptor descriptor_;
    bool isOpen_ = false;
    std::int64_t size_ = 0;
    std::int64_t position_ = 0;
    std::int64_t dataStart_ = 0;
    std::int64_t readable_ = 0;
    std::vector<std::int64_t> headerBitrates_; ///< one a stream
    std::unique_ptr<AVIOContext, CloseIo> io_;
    std::unique_ptr<AVFormatContext, CloseContext> context_; // reads through what is above
    std::string error_;
};

} // namespace vornak::tool

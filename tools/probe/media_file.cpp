#include "tools/probe/media_file.h"

#include "tools/terminal/printable.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <malloc.h>
#include <mutex>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

namespace vornak::tool {
namespace {

constexpr int kBufferSize = 32 * 1024;

/// Makes the process keep the memory that it frees, up to a bound. Opening a file with its
/// decoders takes some megabytes and gives them back; for the kernel to hand out pages anew each
/// time costs more than all else about a short file. Once a process is enough.
void keepFreedMemory()
{
    constexpr int kKept = 64 * 1024 * 1024;
    constexpr int kLargestBlock =
        32 * 1024 * 1024; // beyond, mmap() and munmap(); the most there is

    static std::once_flag once;
    std::call_once(once, [] {
        mallopt(M_TRIM_THRESHOLD, kKept);
        mallopt(M_MMAP_THRESHOLD, kLargestBlock);
    });
}

// The libraries say why they fail in their log alone. The callback has no argument of its own,
// but it is called on the thread that is at work.
thread_local char t_firstError[200];

void keepFirstError(void *, int level, const char *format, va_list arguments)
{
    if (level > AV_LOG_ERROR || t_firstError[0] != '\0') return;
    std::vsnprintf(t_firstError, sizeof t_firstError, format, arguments);
}

/// Keeps the libraries from printing, in the whole process, and begins to listen for the first
/// error that they report on this thread.
void startListeningToLibav()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(keepFirstError); });
    t_firstError[0] = '\0';
}

/// That error, or the empty text.
std::string firstLibavError()
{
    std::string text = t_firstError;
    text.erase(text.find_last_not_of(" .\n") + 1);
    return text;
}

int openForReading(const std::string &path)
{
    int number = -1;
    // non-blocking, or a pipe without a writer would hold us up
    do number = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    while (number < 0 && errno == EINTR);
    return number;
}

/// Playlists open other files; by protocols of which none is allowed, or by refuseToOpen().
AVDictionary *forbidOtherFiles()
{
    AVDictionary *options = nullptr;
    if (av_dict_set(&options, "protocol_whitelist", "none", 0) < 0) throw std::bad_alloc();
    return options;
}

int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EPERM);
}

/// A name that tells libavformat the extension and nothing else: it takes "%03d" in a name for
/// a sequence, and a text before a colon for a protocol.
std::string nameForGuessing(const std::string &path)
{
    const std::size_t dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] == '/') return "media";
    const std::string extension = path.substr(dot);
    const bool plain = std::all_of(extension.begin() + 1, extension.end(), [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
    return plain ? "media" + extension : "media";
}

AVIOContext *makeIo(void *file, int (*read)(void *, std::uint8_t *, int),
                    std::int64_t (*seek)(void *, std::int64_t, int))
{
    auto *buffer = static_cast<unsigned char *>(av_malloc(kBufferSize));
    AVIOContext *io = avio_alloc_context(buffer, kBufferSize, 0, file, read, nullptr, seek);
    if (buffer && io) return io;
    av_free(buffer);
    av_free(io);
    throw std::bad_alloc();
}

/// Pictures made of characters, for which text files pass, and any that is called ".bin".
bool isOfCharacters(const AVFormatContext &context)
{
    constexpr std::string_view formats[] = {"adf", "bin", "idf", "tty", "xbin"};
    return std::ranges::find(formats, context.iformat->name) != std::end(formats);
}

std::string notMedia()
{
    const std::string reason = printable(firstLibavError()); // may quote the file
    return reason.empty() ? kNotMedia : kNotMedia + (" (" + reason + ")");
}

/// Whether libavcodec takes a stream's bit rate from its frames, when no header says another.
bool namesBitrate(AVCodecID codec)
{
    constexpr AVCodecID codecs[] = {AV_CODEC_ID_AC3, AV_CODEC_ID_DTS, AV_CODEC_ID_MP1,
                                    AV_CODEC_ID_MP2, AV_CODEC_ID_MP3};
    return std::ranges::find(codecs, codec) != std::end(codecs);
}

} // namespace

MediaFile::MediaFile(const std::string &path, Search search) : descriptor_(openForReading(path))
{
    if (isFileWithContent()) openMedia(path);
    if (context_) findStreams(search);
}

void MediaFile::CloseIo::operator()(AVIOContext *io) const
{
    av_freep(&io->buffer); // not always the buffer that it was made with
    avio_context_free(&io);
}

void MediaFile::CloseContext::operator()(AVFormatContext *context) const
{
    avformat_close_input(&context);
}

/// Takes the size of the file that was opened just now, or says what is wrong with it.
bool MediaFile::isFileWithContent()
{
    struct stat status {};
    if (!descriptor_ || fstat(descriptor_.get(), &status) != 0)
        error_ = std::generic_category().message(errno);
    else if (!S_ISREG(status.st_mode))
        error_ = S_ISDIR(status.st_mode) ? "is a directory" : "neither a file nor a folder";
    isOpen_ = error_.empty();
    if (isOpen_ && status.st_size == 0) error_ = "is empty";
    size_ = status.st_size;
    return error_.empty();
}

void MediaFile::openMedia(const std::string &path)
{
    constexpr std::int64_t kMostForHeader = 128'000'000; // fonts and covers are part of it

    keepFreedMemory();
    startListeningToLibav();
    io_.reset(makeIo(this, readNext, seek));
    context_.reset(avformat_alloc_context());
    if (!context_) throw std::bad_alloc();
    AVDictionary *options = forbidOtherFiles();
    AVFormatContext *context = context_.release();
    context->pb = io_.get();
    context->io_open = refuseToOpen;
    limitReading(kMostForHeader);
    const int status =
        avformat_open_input(&context, nameForGuessing(path).c_str(), nullptr, &options);
    av_dict_free(&options);
    context_.reset(context); // null after a failure
    if (status < 0 || isOfCharacters(*context)) {
        error_ = notMedia();
        context_.reset();
    }
}

void MediaFile::findStreams(Search search)
{
    constexpr std::int64_t kMostForStreams = 64'000'000;

    dataStart_ = avio_tell(io_.get());
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        AVCodecParameters &parameters = *context_->streams[i]->codecpar;
        headerBitrates_.push_back(parameters.bit_rate);
        if (namesBitrate(parameters.codec_id)) parameters.bit_rate = 0;
    }
    if (search == Search::Usual) context_->fps_probe_size = 0; // the frame rate is not asked for
    if (search == Search::Far) {
        context_->probesize = kMostForStreams / 2; // some is read again, at the end
        context_->max_analyze_duration = std::int64_t{60} * AV_TIME_BASE;
    }
    limitReading(kMostForStreams);
    if (avformat_find_stream_info(context_.get(), nullptr) >= 0) return;
    error_ = notMedia();
    context_.reset();
}

std::int64_t MediaFile::headerBitrate(int stream) const
{
    const auto index = static_cast<std::size_t>(stream);
    return index < headerBitrates_.size() ? headerBitrates_[index] : 0;
}

std::span<const std::uint8_t> MediaFile::readStart(std::span<std::uint8_t> buffer) const
{
    const ssize_t got = pread(descriptor_.get(), buffer.data(), buffer.size(), 0);
    return buffer.first(got > 0 ? static_cast<std::size_t>(got) : 0);
}

int MediaFile::readNext(void *self, std::uint8_t *buffer, int size)
{
    auto &file = *static_cast<MediaFile *>(self);
    if (file.readable_ <= 0) return AVERROR_EOF;
    ssize_t got = 0;
    do got = pread(file.descriptor_.get(), buffer, static_cast<std::size_t>(size), file.position_);
    while (got < 0 && errno == EINTR);
    if (got < 0) return AVERROR(errno);
    if (got == 0) return AVERROR_EOF;
    file.position_ += got;
    file.readable_ -= got;
    return static_cast<int>(got);
}

std::int64_t MediaFile::seek(void *self, std::int64_t offset, int whence)
{
    auto &file = *static_cast<MediaFile *>(self);
    if ((whence & AVSEEK_SIZE) != 0) return file.size_;
    const int from = whence & ~AVSEEK_FORCE;
    if (from == SEEK_CUR) offset += file.position_;
    if (from == SEEK_END) offset += file.size_;
    if (offset < 0) return AVERROR(EINVAL);
    return file.position_ = offset;
}

} // namespace vornak::tool

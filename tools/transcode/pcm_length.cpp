#include "tools/transcode/pcm_length.h"

#include "tools/terminal/exit_status.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/library_command.h"
#include "tools/transcode/make_output.h"
#include "tools/transcode/work_file.h"

#include "base/descriptor.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <string_view>
#include <system_error>

namespace vornak::tool {
namespace {

/// The head of a chunk: a name of four letters and a size.
struct ChunkHead {
    std::array<char, 8> bytes{};

    std::string_view name() const { return {bytes.data(), 4}; }

    std::int64_t size(bool bigEndian) const
    {
        std::int64_t size = 0;
        for (const std::size_t i : {0, 1, 2, 3})
            size = size << 8 | static_cast<unsigned char>(bytes[bigEndian ? 4 + i : 7 - i]);
        return size;
    }
};

/// Where the content of the first chunk of that name begins, or 0.
std::int64_t findChunk(std::istream &file, std::string_view name, bool bigEndian)
{
    for (ChunkHead head; file.read(head.bytes.data(), head.bytes.size());) {
        if (head.name() == name) return file.tellg();
        const std::int64_t size = head.size(bigEndian);
        file.seekg(size + size % 2, std::ios::cur); // chunks begin at even places
    }
    return 0;
}

/// Bytes up to the first sample of a WAV or AIFF file; 0 for anything else.
std::int64_t headerBytesOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    ChunkHead head;
    char form[4];
    if (!file.read(head.bytes.data(), head.bytes.size()) || !file.read(form, sizeof form)) return 0;
    if (head.name() == "RIFF") return findChunk(file, "data", false);
    if (head.name() != "FORM") return 0;
    constexpr int kOffsetAndBlockSize = 8; // the chunk's own fields before the samples
    const std::int64_t start = findChunk(file, "SSND", true);
    return start > 0 ? start + kOffsetAndBlockSize : 0;
}

/// Why the library makes no estimate.
std::string_view refusalOf(const Decision &decision)
{
    if (decision.isVideo) return "no estimate, it is a video";
    if (decision.isRefused()) return "no estimate, it is refused";
    if (!decision.transcodesAudio())
        return "no estimate, the sound is not transcoded (--force estimates it all the same)";
    if (decision.media.duration < 0.5) return "no estimate, it is shorter than a second";
    return "no estimate, the rule's OPTION names no PCM of 44100 to 320000 Hz and up to 8 channels "
           "(-c:a, -ar, -ac), or its container's OPTION is not of known size";
}

std::string textOf(const std::string &path, const PcmEstimate &pcm)
{
    return fmt::format("{}: {} bytes for {} s, {} of them the header; {} frames\n", printable(path),
                       pcm.bytes, pcm.seconds, pcm.headerBytes, pcm.frames);
}

struct PcmSize {
    std::int64_t bytes = 0, header = 0;
};

int compare(const PcmEstimate &pcm, const PcmSize &made)
{
    const bool agrees = made.bytes == pcm.bytes;
    writeOut(fmt::format("produced: {} bytes, {} of them the header: {}\n", made.bytes, made.header,
                         agrees ? "the sizes agree" : "the sizes differ"));
    if (agrees) return kDone;
    const std::int64_t header = made.header - pcm.headerBytes;
    if (header != 0) writeOut(fmt::format("  header: {:+} bytes\n", header));
    if (const std::int64_t samples = made.bytes - pcm.bytes - header; samples != 0)
        writeOut(fmt::format("  samples: {:+} bytes\n", samples));
    return kIncomplete;
}

/// Makes the file, measures it and throws it away.
int measure(const DecidedFile &file, const LibraryCommand &command, const std::string &ffmpeg,
            PcmSize &size)
{
    const char *const named = std::getenv("TMPDIR");
    const std::string around = named && *named ? named : "/tmp";
    const Descriptor folder(open(around.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        throw std::system_error(errno, std::generic_category(),
                                "can't write into " + printable(around));
    const HeldSignals signals; // until nothing of the work is left
    const WorkFile work(folder.get());
    const Making making{.file = file,
                        .command = &command,
                        .program = ffmpeg,
                        .work = &work,
                        .output = "output in " + around};
    const int status = makeOutput(making, signals);
    if (status != kDone) return status;
    size = {static_cast<std::int64_t>(std::filesystem::file_size(work.path())),
            headerBytesOf(work.path())};
    const int signal = signals.takeInterruption();
    return signal == 0 ? kDone : sayInterrupted(making, signal);
}

} // namespace

int showLength(const DecidedFile &file)
{
    const auto pcm = file.decision.isRefused() ? std::nullopt : estimatePcm(file.decision);
    if (!pcm) return complainOf(file.path, refusalOf(file.decision));
    writeOut(textOf(file.path, *pcm));
    return kDone;
}

int verifyLength(const DecidedFile &file, const std::string &ffmpeg)
{
    if (const int status = showLength(file); status != kDone) return status;
    const auto made = makeCommand(file.decision, 1);
    if (const auto *problem = std::get_if<std::string>(&made))
        return complainOf(file.path, *problem);
    const auto &command = std::get<LibraryCommand>(made);
    PcmSize size;
    try {
        const int status = measure(file, command, ffmpeg, size);
        return status == kDone ? compare(*command.pcm, size) : status;
    } catch (const WriteError &error) {
        complain(error.what());
        return kIncomplete;
    }
}

} // namespace vornak::tool

#include "tools/transcode/pcm_file.h"

#include <array>
#include <fstream>
#include <string_view>

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

} // namespace

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

} // namespace vornak::tool

// Loads any bytes as a profile and checks what comes out.
#include "include/vornak.h"
#include "include/vornak_host.h"

#include "tests/support/loaded_profile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace vornak::test {
namespace {

/// Bytes as a file in memory.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t *bytes, std::size_t size)
        : descriptor_(memfd_create("profile", MFD_CLOEXEC)),
          path_("/proc/self/fd/" + std::to_string(descriptor_))
    {
        if (write(descriptor_, bytes, size) != static_cast<ssize_t>(size)) std::abort();
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    const char *path() const { return path_.c_str(); }

private:
    int descriptor_;
    std::string path_;
};

void check(bool holds, const char *what)
{
    if (holds) return;
    std::printf("load_profile_fuzz: %s\n", what);
    std::fflush(stdout);
    std::abort();
}

bool isStandardRate(int rate)
{
    constexpr int s_Rates[] = {0,      8000,   11025,  16000,   22050,  32000, 44056,
                               44100,  47250,  48000,  50000,   50400,  88200, 96000,
                               176400, 192000, 352800, 2822400, 5644800};
    return std::find(std::begin(s_Rates), std::end(s_Rates), rate) != std::end(s_Rates);
}

/// Walks a table as its readers do; `checkRecord` looks into each record.
template <class Record, class CheckRecord>
void checkTable(const Record *table, CheckRecord checkRecord)
{
    const Record *record = table;
    for (; !isEnd(*record); ++record) {
        check(record->count == table->count, "records of a table differ in their count");
        checkRecord(*record);
    }
    check(record - table <= std::max(table->count, 0), "a table holds more records than elements");
}

void checkAudioTable(const TRANSCODE_AUDIO_MAPPING_ST *table)
{
    checkTable(table, [](const TRANSCODE_AUDIO_MAPPING_ST &rule) {
        check(isStandardRate(rule.maxSampleRate) && isStandardRate(rule.minSampleRate),
              "a limit is no standard rate");
        check(rule.pFormatTable, "an audio rule has no containers");
        checkTable(rule.pFormatTable, [](const TANASCODE_FORMAT_MAPPING_ST &entry) {
            for (const char *text : {entry.mime, entry.pn, entry.option})
                check(!text || *text != '\0', "an empty text is stored");
        });
    });
}

void checkProfile(const TRANSCODE_DEVICE_PROFILE_ST &profile)
{
    check(profile.deviceName && *profile.deviceName != '\0', "a device has no name");
    if (profile.pAudioTable) checkAudioTable(profile.pAudioTable);
    if (!profile.pVideoTable) return;
    checkTable(profile.pVideoTable, [](const TRANSCODE_VIDEO_MAPPING_ST &rule) {
        check(rule.pAudioTable, "a video rule has no audio rules");
        checkAudioTable(rule.pAudioTable);
    });
}

/// What a load with these flags holds, and all its promises kept; empty: no profile.
std::string contentOf(const MemoryFile &file, int mediaFlags)
{
    const LoadedProfile profile(ParseSingleTranscodeXML(file.path(), mediaFlags, 0, 0));
    if (!profile) return {};
    checkProfile(*profile);
    check(profile->mediaFlags == mediaFlags, "other flags are stored");
    profile->mediaFlags = 0;
    ProfileWriter writer;
    std::string content = writer.write(*profile);
    check(writer.allClear(), "a free record is not clear");
    return content;
}

/// Whether the file has a device with a name, by the host's reader alone.
bool namesADevice(const MemoryFile &file)
{
    int error = 0;
    const XMLNode root = XMLNode::openFileHelper(file.path(), &error);
    check(error == 0 || root.isEmpty(), "a document that is refused has a root");
    const char *name = root.getChildNode("DEVICE").getAttribute("NAME");
    return name && *name != '\0';
}

void checkFile(const MemoryFile &file)
{
    const std::string both = contentOf(file, VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO);
    check(both == contentOf(file, -1), "a second load holds something else");
    check(both.empty() != namesADevice(file), "a profile is there without a device's name");
    if (both.empty()) return;

    constexpr std::string_view kNoTable = "  no table\n";
    const std::string neither = contentOf(file, 2);
    const std::string device = neither.substr(0, neither.size() - 2 * kNoTable.size());
    std::string music = contentOf(file, VORNAK_MEDIA_MUSIC);
    std::string video = contentOf(file, VORNAK_MEDIA_VIDEO);
    check(music.ends_with(kNoTable), "a table is there that nobody asked for");
    music.erase(music.size() - kNoTable.size());
    video.erase(0, device.size() + kNoTable.size());
    check(both == music + video, "sections differ when they are loaded alone");
}

} // namespace
} // namespace vornak::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    vornak::test::checkFile(vornak::test::MemoryFile(bytes, size));
    return 0;
}

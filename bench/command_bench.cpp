// Commands and option texts against one snprintf() of the same final text. The registry is the
// program's own and only copies, so that the library is what is measured.
#include "base/media_ids.h"
#include "bench/measure.h"
#include "include/vornak.h"
#include "include/vornak_host.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

static void put(char *buffer, const char *text)
{
    std::memcpy(buffer, text, std::strlen(text) + 1);
}

int CodecIDToName(char *name, int id)
{
    put(name, id == 28 ? "CODEC_ID_H264" : "CODEC_ID_AAC");
    return 0;
}

int ProfileIDToName(char *name, int, int codecId)
{
    put(name, codecId == 28 ? "High" : "LC");
    return 0;
}

int ContainerFormatIDToName(char *name, char *subtype, int)
{
    put(name, "FORMAT_MP4");
    put(subtype, "BRAND_isom");
    return 0;
}

namespace vornak::bench {
namespace {

char printed[2 * VORNAK_OPTION_TEXT_SIZE]; // what snprintf() writes

/// Measures both; `text` gives the library's text, which must be the one that was printed.
template <class Library, class Print, class Text>
void compare(const char *library, const char *print, Library byTheLibrary, Print bySnprintf,
             Text text)
{
    measure(library, byTheLibrary);
    measure(print, bySnprintf);
    if (text() != printed) std::abort();
    ratio(library, print, 3);
}

void compareCommands()
{
    const auto set = std::make_unique<TRANSCODE_CONSTRAINT_ST>();
    const struct {
        int slot;
        const char *text;
    } values[] = {{2, "1280x720"}, {4, "2000000"}, {8, "2"}, {10, "192000"}, {12, "48000"}};
    for (const auto &value : values) {
        setTranscodeConstraint(set.get(), value.slot, value.text);
        set->mask |= std::uint64_t{1} << value.slot;
    }
    TRANSCODE_CMD_ST command;
    const auto render = [&] {
        if (getTranscodeCmdByCondition(set.get(), &command) != 0) std::abort();
    };
    const auto text = [&] { return std::string(command.cmd); };
    const auto &value = set->value;
    compare(
        "command/first-dialect", "snprintf/first-dialect", render,
        [&] {
            std::snprintf(printed, sizeof printed, " -vf scale=%s:%s -b:v %s -ac %s -b:a %s -ar %s",
                          "1280", "720", value[4], value[8], value[10], value[12]);
        },
        text);
    set->mode = 1;
    compare(
        "command/second-dialect", "snprintf/second-dialect", render,
        [&] {
            std::snprintf(printed, sizeof printed, " -s %sp -vb %s -ac %s -ab %s -ar %s", "720",
                          value[4], value[8], value[10], value[12]);
        },
        text);
}

void compareOptionTexts()
{
    char mp4[] = "-f mp4", h264[] = "-c:v libx264 -profile:v high -b:v 4M", aac[] = "-c:a aac";
    TANASCODE_FORMAT_MAPPING_ST format = {"mp4/isom"_container, nullptr, nullptr, mp4, 0, 0, 1};
    TRANSCODE_AUDIO_MAPPING_ST audio = {};
    audio.aCodecId = "aac"_codec;
    audio.aProfileId = 1;
    audio.option = aac;
    audio.count = 1;
    audio.pFormatTable = &format;
    TRANSCODE_VIDEO_MAPPING_ST video = {};
    video.vCodecId = "h264"_codec;
    video.vProfileId = 4;
    video.option = h264;
    video.count = 1;
    video.pAudioTable = &audio;

    // One snprintf() writes both texts, a line end between them.
    char option[VORNAK_OPTION_TEXT_SIZE], tag[VORNAK_TAG_SIZE];
    const auto text = [&] { return std::string(option) + '\n' + tag; };
    compare(
        "options/music", "snprintf/music",
        [&] {
            if (getMusicTranscodeParams2(&audio, 256, 0, option, tag, 0, 13230000) != 0)
                std::abort();
        },
        [&] {
            std::snprintf(printed, sizeof printed, "%s -num_frames %lld %s\n%s_%s.%s-%s", mp4,
                          13230000LL, aac, "AAC", "LC", "MP4", "isom");
        },
        text);
    compare(
        "options/video", "snprintf/video",
        [&] {
            if (getVideoTranscodeParams2(&video, 256, 256, 0, option, tag, 0, 0) != 0) std::abort();
        },
        [&] {
            std::snprintf(printed, sizeof printed, "%s %s %s\n%s_%s_%s_%s.%s.%s", mp4, h264, aac,
                          "H264", "High", "AAC", "LC", "MP4", "ISOM");
        },
        text);
}

} // namespace
} // namespace vornak::bench

int main()
{
    vornak::bench::compareCommands();
    vornak::bench::compareOptionTexts();
}

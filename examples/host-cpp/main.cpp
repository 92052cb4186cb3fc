/* A media server in C++ that is its own host: registry.cpp has its names and ids, xml_node.cpp
 * its XML reader, utilities.cpp the rest of vornak_host.h. It asks about a film and a song.
 *   host-cpp PROFILE          how to build it: "Link a program" in README.md
 *
 * The library takes the first definition of a host function that the process offers. A program
 * that opens the library by dlopen() must export its own (-rdynamic): without that, and with
 * libvornak_platform.so loaded, the stand-in host answers in silence. To see whose answers:
 *   LD_DEBUG=bindings host-cpp PROFILE 2>&1 | grep 'libvornak.so.*CodecNameToID' */
#include <vornak.h>
#include <vornak_host.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>

namespace {

// Children go before parents. A table ends at id -1 and nowhere else: 0 is "any".
void release(TRANSCODE_AUDIO_MAPPING_ST *table)
{
    for (auto *rule = table; rule && rule->aCodecId != -1; ++rule) {
        for (auto *entry = rule->pFormatTable; entry && entry->formatId != -1; ++entry)
            for (char *text : {entry->mime, entry->pn, entry->option}) std::free(text);
        std::free(rule->pFormatTable);
        std::free(rule->option);
    }
    std::free(table);
}

struct Release {
    void operator()(TRANSCODE_DEVICE_PROFILE_ST *profile) const
    {
        for (auto *rule = profile->pVideoTable; rule && rule->vCodecId != -1; ++rule) {
            release(rule->pAudioTable);
            std::free(rule->option);
        }
        std::free(profile->pVideoTable);
        release(profile->pAudioTable);
        std::free(profile->deviceName);
        std::free(profile);
    }
};

struct Ids {
    int h264, high, flac, matroska, mp4;
    bool known() // to the registry of this program
    {
        return CodecNameToID("h264", &h264) == 0 && ProfileNameToID("high", &high) == 0 &&
               CodecNameToID("flac", &flac) == 0 &&
               ContainerFormatNameToID("matroska", nullptr, &matroska) == 0 &&
               ContainerFormatNameToID("mp4", nullptr, &mp4) == 0;
    }
};

// What the four type-qualified entry points fill in.
struct Answer {
    int video = -1, audio = -1, format = -1, container = -1;
    char *mime = nullptr, *dlnaName = nullptr;
};

void print(const char *what, int result, const Answer &answer)
{
    std::printf("%s: result %d", what, result);
    if (answer.video >= 0) std::printf(", video %d", answer.video);
    if (answer.audio >= 0) std::printf(", audio %d", answer.audio);
    std::printf(", container %d, MIME type %s\n", answer.format,
                answer.mime ? answer.mime : "none");
}

void decideFilm(TRANSCODE_VIDEO_MAPPING_ST *rules, const Ids &ids)
{
    Answer whole; // with MP4 preferred for the output
    int result = getVideoTranscodeIndex2(rules, ids.h264, ids.high, 41, 1920, 1080, 8000000,
                                         ids.flac, 0, 0, 2, 900000, 48000, ids.matroska,
                                         &whole.video, &whole.audio, &whole.format, &whole.mime,
                                         &whole.dlnaName, &whole.container, ids.mp4, 1, 0, 0, 0);
    print("film, MP4 preferred", result, whole);
    char option[VORNAK_OPTION_TEXT_SIZE];
    if (whole.container >= 0 && getVideoTranscodeParams(rules, whole.video, whole.audio,
                                                        whole.format, option, nullptr, 0) == 0)
        std::printf("transcoder's options: %s\n", option);

    Answer step; // the same without a preference, and the container inside the chosen audio rule
    result =
        FindVideoTranscode(rules, ids.h264, ids.high, 41, 1920, 1080, 8000000, ids.flac, 0, 0, 2,
                           900000, 48000, ids.matroska, &step.video, &step.audio, &step.format,
                           &step.mime, &step.dlnaName, &step.container, 0, 1, 0, 0, 0);
    print("film", result, step);
    if (result == VORNAK_NO_TABLE) return;
    const auto &audio = rules[step.video & 255].pAudioTable[step.audio & 255];
    Answer entry;
    result = FindFormatTranscode(audio.pFormatTable, ids.mp4, &entry.format, &entry.mime,
                                 &entry.dlnaName, &entry.container, 0, 0, 0);
    print("the same film in MP4", result, entry);
}

void decideSong(TRANSCODE_AUDIO_MAPPING_ST *rules, const Ids &ids)
{
    Answer song;
    const int result = FindMusicTranscode(rules, ids.flac, 0, 0, 2, 900000, 48000, ids.matroska,
                                          &song.audio, &song.format, &song.mime, &song.dlnaName,
                                          &song.container, 0, 0, nullptr, 0);
    print("song", result, song);
}

} // namespace

int main(int argc, char **argv)
{
    Ids ids{};
    if (argc != 2 || !ids.known()) return std::fputs("usage: host-cpp PROFILE\n", stderr), 2;
    const std::unique_ptr<TRANSCODE_DEVICE_PROFILE_ST, Release> profile(
        ParseSingleTranscodeXML(argv[1], VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0));
    if (!profile) return std::fputs("host-cpp: can't load the profile\n", stderr), 2;
    decideFilm(profile->pVideoTable, ids);
    decideSong(profile->pAudioTable, ids);
}

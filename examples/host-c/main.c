/* A media server's question in C, with libvornak_platform.so for a host: what does this player
 * take of a film whose properties are known, and what is the transcoder told?
 *   host-c PROFILE            how to build it: "Link a program" in README.md */
#include <vornak.h>
#include <vornak_host.h> /* the registry: names to ids */

#include <stdio.h>
#include <stdlib.h>

/* Children go before parents. A table ends at id -1 and nowhere else: 0 is "any". */
static void releaseFormats(TANASCODE_FORMAT_MAPPING_ST *table)
{
    for (TANASCODE_FORMAT_MAPPING_ST *entry = table; entry && entry->formatId != -1; ++entry) {
        free(entry->mime);
        free(entry->pn);
        free(entry->option);
    }
    free(table);
}

static void releaseAudio(TRANSCODE_AUDIO_MAPPING_ST *table)
{
    for (TRANSCODE_AUDIO_MAPPING_ST *rule = table; rule && rule->aCodecId != -1; ++rule) {
        releaseFormats(rule->pFormatTable);
        free(rule->option);
    }
    free(table);
}

static void releaseProfile(TRANSCODE_DEVICE_PROFILE_ST *profile)
{
    TRANSCODE_VIDEO_MAPPING_ST *rule = profile->pVideoTable;
    for (; rule && rule->vCodecId != -1; ++rule) {
        releaseAudio(rule->pAudioTable);
        free(rule->option);
    }
    free(profile->pVideoTable);
    releaseAudio(profile->pAudioTable);
    free(profile->deviceName);
    free(profile);
}

/* An index below VORNAK_TRANSCODE keeps the part; the low 8 bits are the rule in any case. */
static void printPart(const char *name, int index)
{
    printf("%s: %s, rule %d\n", name, index < VORNAK_TRANSCODE ? "keep" : "transcode", index & 255);
}

static int fail(int status, const char *what)
{
    fprintf(stderr, "host-c: %s\n", what);
    return status;
}

/* An H.264 film of 1920x1080 in Matroska, its sound FLAC in stereo. */
static int decideFilm(TRANSCODE_VIDEO_MAPPING_ST *rules)
{
    int h264, high, flac, matroska;
    if (CodecNameToID("h264", &h264) || ProfileNameToID("high", &high) ||
        CodecNameToID("flac", &flac) || ContainerFormatNameToID("matroska", NULL, &matroska))
        return fail(1, "the registry lacks a name");

    /* VORNAK_KEPT is also the answer where a table is missing: the profile has no VIDEO, or no
     * valid rule in it. What isn't decided isn't written, so the output's container tells. */
    int video, audio, format, container = -1;
    char *mime, *dlnaName;
    const int result = getVideoTranscodeIndex(
        rules, h264, high, 41, 1920, 1080, 8000000, /* level, picture, bits per second */
        flac, 0, 0, 2, 900000, 48000,               /* profile, level, channels, bit rate, Hz */
        matroska, &video, &audio, &format, &mime, &dlnaName, &container, 1, 0, 0, 0);
    if (result == VORNAK_NOT_ALLOWED) {
        puts("refused: it would have to be transcoded, and the profile forbids that");
        return 0;
    }
    if (container == -1) return fail(1, "the profile has no rule for such files");

    printPart("video", video);
    printPart("audio", audio);
    char name[VORNAK_NAME_SIZE] = "", subtype[VORNAK_NAME_SIZE] = "";
    if (ContainerFormatIDToName(name, subtype, container)) return fail(1, "unnamed container");
    printf("output: container %s, entry %d\n", name + VORNAK_CONTAINER_PREFIX, format & 255);
    printf("MIME type %s, DLNA profile %s\n", mime ? mime : "none", dlnaName ? dlnaName : "none");
    if (result == VORNAK_NONSEEKABLE) puts("the output can't be sought in");
    if (result == VORNAK_KEPT) {
        puts("sent as it is");
        return 0;
    }
    char option[VORNAK_OPTION_TEXT_SIZE], tag[VORNAK_TAG_SIZE];
    if (getVideoTranscodeParams2(rules, video, audio, format, option, tag, 0, container))
        return fail(1, "no options for this output");
    printf("transcoder's options: %s\n", option);
    return 0;
}

int main(int argc, char **argv)
{
    if (argc != 2) return fail(2, "usage: host-c PROFILE");
    TRANSCODE_DEVICE_PROFILE_ST *profile =
        ParseSingleTranscodeXML(argv[1], VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0);
    if (!profile) return fail(2, "can't load the profile");
    const int status = decideFilm(profile->pVideoTable);
    releaseProfile(profile);
    return status;
}

// The names and ids of this program: a few, so that a profile's rules for others are left out.
// The ids of codecs and containers are agreed upon with the library, see docs/host.md; the bits of
// profiles are the program's own.
#include <vornak_host.h>

#include <cstdio>
#include <cstring>

namespace {

struct Row {
    const char *name;
    int id;
};

constexpr Row s_Codecs[] = {{"any", 0},       {"mpeg2video", 2}, {"h264", 28},     {"mp3", 0x15001},
                            {"aac", 0x15002}, {"ac3", 0x15003},  {"flac", 0x1500c}};
constexpr Row s_Profiles[] = {{"baseline", 1}, {"constrained_baseline", 2},
                              {"main", 4},     {"high", 8},
                              {"lc", 16},      {"he", 32},
                              {"he_v2", 64},   {"simple", 128}};
constexpr Row s_Containers[] = {{"any", 0},       {"mpegts", 11}, {"mp4", 8},
                                {"matroska", 12}, {"flac", 3},    {"mp3", 1}};

template <std::size_t Size>
int findId(const Row (&rows)[Size], const char *name, int *id)
{
    for (const Row &row : rows)
        if (std::strcmp(row.name, name) == 0) {
            *id = row.id;
            return 0;
        }
    return 1;
}

template <std::size_t Size>
int findName(const Row (&rows)[Size], int id, const char *prefix, char *name)
{
    for (const Row &row : rows)
        if (row.id == id) {
            std::snprintf(name, VORNAK_NAME_SIZE, "%s%s", prefix, row.name);
            return 0;
        }
    return 1;
}

} // namespace

int CodecNameToID(const char *name, int *id)
{
    return findId(s_Codecs, name, id);
}

int ProfileNameToID(const char *name, int *bit)
{
    return findId(s_Profiles, name, bit);
}

int PlayExceptionNameToID(const char *, int *)
{
    return 1; // it tells none apart
}

int ContainerFormatNameToID(const char *name, const char *subtype, int *id)
{
    return subtype && *subtype ? 1 : findId(s_Containers, name, id); // nor any subtypes
}

int CodecIDToName(char *name, int id)
{
    return findName(s_Codecs, id, "CODEC_ID_", name); // VORNAK_CODEC_PREFIX characters
}

int ProfileIDToName(char *name, int profile, int)
{
    return findName(s_Profiles, profile & -profile, "", name); // of a set, the lowest bit's
}

int ContainerFormatIDToName(char *name, char *subtype, int id)
{
    *subtype = '\0';
    return findName(s_Containers, id, "FORMAT_", name); // VORNAK_CONTAINER_PREFIX characters
}

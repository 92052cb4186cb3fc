#include "tools/import/announcement.h"

#include "base/media_ids.h"
#include "tools/import/limits.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

namespace vornak::tool {
namespace {

// What these names say of music in a container. The bit rates of their codecs need no limit: they
// can't be above those of the names.
constexpr struct {
    const char *name;
    int codec, container;
    const char *profile;
    int channels, sampleRate; // at most
} s_Names[] = {
    {"MP3", "mp3"_codec, "mp3"_container, "", 2, 48000},
    {"AAC_ADTS", "aac"_codec, "adts"_container, "lc", 2, 48000},
    {"AAC_ISO", "aac"_codec, "mp4"_container, "lc", 2, 48000},
    {"AC3", "ac3"_codec, "ac3"_container, "", 6, 48000},
};

/// Empty: no name is certain.
std::string dlnaNameOfMusic(const Limits &limits, int format)
{
    for (const auto &row : s_Names) {
        const Limits named{.codec = row.codec,
                           .profiles = profilesNamed(row.profile),
                           .channels = {0, row.channels},
                           .sampleRate = {0, row.sampleRate}};
        if (containerPart(format) == row.container && contains(named, limits)) return row.name;
    }
    return {};
}

} // namespace

Container musicIn(int format, const Limits &sound)
{
    return {format, mimeOf(format, true), dlnaNameOfMusic(sound, format)};
}

Container videoIn(int format)
{
    return {format, mimeOf(format, false), {}};
}

} // namespace vornak::tool

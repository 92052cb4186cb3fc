#include "tools/import/dlna_name.h"

#include "base/media_ids.h"
#include "tools/import/limits.h"
#include "tools/import/names.h"

namespace vornak::tool {
namespace {

// The bit rates of these codecs need no limit: they can't be above those of the names.
constexpr struct {
    const char *name, *codec, *container, *profile;
    int channels, sampleRate; // at most
} s_Names[] = {
    {"MP3", "mp3", "mp3", "", 2, 48000},
    {"AAC_ADTS", "aac", "adts", "lc", 2, 48000},
    {"AAC_ISO", "aac", "mp4", "lc", 2, 48000},
    {"AC3", "ac3", "ac3", "", 6, 48000},
};

} // namespace

std::string dlnaNameOfMusic(const SoundLimits &limits, int format)
{
    for (const auto &row : s_Names) {
        const SoundLimits named{codecNamed(row.codec),
                                profilesNamed(row.profile),
                                {0, row.channels},
                                {},
                                {0, row.sampleRate}};
        if (containerPart(format) == containerNamed(row.container) && contains(named, limits))
            return row.name;
    }
    return {};
}

} // namespace vornak::tool

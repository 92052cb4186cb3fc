#include "tools/decide/stand_in_audio.h"

#include "tools/probe/media_info.h"

#include <iterator>
#include <limits>
#include <optional>

namespace vornak::tool {
namespace {

constexpr int AudioSource::*s_Dimensions[] = {&AudioSource::profileId, &AudioSource::level,
                                              &AudioSource::channels, &AudioSource::bitrate,
                                              &AudioSource::sampleRate};
constexpr unsigned kCorners = 1U << std::size(s_Dimensions);

/// The least or the most of a property that the rule takes.
int endOf(const AudioRule &rule, int AudioSource::*dimension, bool high)
{
    const bool isSet = dimension == &AudioSource::profileId;
    int end = high && !isSet ? std::numeric_limits<int>::max() : 0;
    for (const AudioProperty &property : s_AudioProperties) {
        const bool isEnd = high != (property.bound == Bound::AtLeast);
        if (property.bounded == dimension && isEnd && property.in(rule) > 0)
            end = property.in(rule);
    }
    return end;
}

/// A corner of the space of properties that the rule takes. Earlier rules of the same codec may
/// take some of them, and narrower ones leave the corners free.
AudioSource cornerOf(const AudioRule &rule, unsigned corner)
{
    AudioSource audio{};
    audio.codecId = rule.aCodecId == kAnyCodec ? kUnknownId : rule.aCodecId;
    for (int AudioSource::*const dimension : s_Dimensions) {
        audio.*dimension = endOf(rule, dimension, (corner & 1U) != 0);
        corner >>= 1U;
    }
    return audio;
}

/// Audio that the library gives to the rule at `position`, in the file's own container.
std::optional<AudioSource> audioKeptBy(const AudioRule *table, int position, int formatId)
{
    for (unsigned corner = 0; corner < kCorners; ++corner) {
        const AudioSource audio = cornerOf(table[position], corner);
        int audioIndex = -1;
        int formatIndex = -1;
        FindMusicTranscode(const_cast<AudioRule *>(table), audio.codecId, audio.profileId,
                           audio.level, audio.channels, audio.bitrate, audio.sampleRate, formatId,
                           &audioIndex, &formatIndex, nullptr, nullptr, nullptr, 0, 0, nullptr, 0);
        if (audioIndex == position && formatIndex >= 0 && !isTranscoded(formatIndex)) return audio;
    }
    return std::nullopt;
}

} // namespace

AudioSource standInAudio(const AudioRule *table, int formatId)
{
    const auto count = static_cast<int>(recordsOf(table).size());
    for (int position = 0; position < count; ++position)
        if (const auto audio = audioKeptBy(table, position, formatId)) return *audio;
    return cornerOf(table[0], 0);
}

} // namespace vornak::tool

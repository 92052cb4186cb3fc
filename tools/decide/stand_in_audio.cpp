#include "tools/decide/stand_in_audio.h"

#include "tools/probe/media_info.h"

#include <limits>
#include <optional>

namespace vornak::tool {
namespace {

constexpr int kMost = std::numeric_limits<int>::max();

int endOf(int min, int max, bool high)
{
    if (high) return max > 0 ? max : kMost;
    return min > 0 ? min : 0;
}

/// A corner of the space of properties that the rule takes. Earlier rules of the same codec may
/// take some of them, and narrower ones leave the corners free.
AudioSource cornerOf(const AudioRule &rule, unsigned corner)
{
    const auto high = [corner](unsigned dimension) { return (corner >> dimension & 1U) != 0; };
    return {
        .codecId = rule.aCodecId == kAnyCodec ? kUnknownId : rule.aCodecId,
        .profileId = high(0) ? rule.aProfileId : 0,
        .level = endOf(0, rule.aLevel, high(1)),
        .channels = endOf(rule.minChannels, rule.maxChannels, high(2)),
        .bitrate = endOf(rule.minBitrate, rule.maxBitrate, high(3)),
        .sampleRate = endOf(rule.minSampleRate, rule.maxSampleRate, high(4)),
    };
}
constexpr unsigned kCorners = 1U << 5U;

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

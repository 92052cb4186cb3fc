#include "cmdline/container_option.h"
#include "include/vornak.h"
#include "include/vornak_host.h"

#include "base/rule_tables.h"

#include <cstring>
#include <optional>

namespace vornak {
namespace {

constexpr int kMinSampleRate = 44100;
constexpr int kMaxSampleRate = 320000;
constexpr int kMaxChannels = 8;

/// What an option's word stands for: header bytes of a container, or bytes of a sample.
struct Word {
    const char *word;
    int bytes;
};

constexpr Word s_Containers[] = {
    {"wav", 44}, {"s16le", 0}, {"s16be", 0}, {"s24le", 0}, {"s24be", 0}, {"aiff", 54},
};

constexpr Word s_SampleFormats[] = {
    {"pcm_s16le", 2},
    {"pcm_s16be", 2},
    {"pcm_s24le", 3},
    {"pcm_s24be", 3},
};

/// Where the value of the first `marker` starts, or null when there is none.
const char *findValue(const char *options, const char *marker)
{
    const char *value = options ? std::strstr(options, marker) : nullptr;
    if (!value) return nullptr;
    value += std::strlen(marker);
    value += std::strspn(value, " ");
    return *value != '\0' ? value : nullptr;
}

template <std::size_t Size>
std::optional<int> findBytes(const Word (&words)[Size], const char *value)
{
    if (!value) return std::nullopt;
    for (const Word &row : words) {
        int begins = 0;
        mystrcmp2(value, row.word, &begins);
        if (begins != 0) return row.bytes;
    }
    return std::nullopt;
}

/// The digits at `text` as a number; none are 0, and what exceeds every limit stays there.
int readDigits(const char *text)
{
    constexpr int kBeyondLimits = 100'000'000;
    int number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        if (number < kBeyondLimits) number = number * 10 + (*text - '0');
    return number;
}

struct PcmOutput {
    int headerBytes, sampleBytes, sampleRate, channels;
};

std::optional<PcmOutput> readPcmOutput(const char *containerOption, const char *audioOption)
{
    const auto headerBytes = findBytes(s_Containers, findValue(containerOption, "-f "));
    if (!headerBytes) return std::nullopt;
    const auto sampleBytes = findBytes(s_SampleFormats, findValue(audioOption, "-c:a "));
    if (!sampleBytes) return std::nullopt;

    const char *rate = findValue(audioOption, "-ar ");
    const char *channels = findValue(audioOption, "-ac ");
    if (!rate || !channels) return std::nullopt;
    const PcmOutput output = {*headerBytes, *sampleBytes, readDigits(rate), readDigits(channels)};
    if (output.sampleRate < kMinSampleRate || output.sampleRate > kMaxSampleRate)
        return std::nullopt;
    if (output.channels > kMaxChannels) return std::nullopt;
    return output;
}

std::optional<PcmOutput> findPcmOutput(const TRANSCODE_AUDIO_MAPPING_ST *table, int audioIndex,
                                       int formatIndex, int defaultFormatId)
{
    const auto *rule = recordAt(table, audioIndex);
    const auto *entry = entryAt(table, audioIndex, formatIndex);
    if (!entry) return std::nullopt;
    const auto container = findContainerOption(*entry, defaultFormatId);
    if (!container) return std::nullopt;
    return readPcmOutput(container->option, rule->option);
}

} // namespace
} // namespace vornak

int guessMusicTranscodeFileLength(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int audioIndex,
                                  int formatIndex, int duration, int /*reserved*/,
                                  int defaultFormatId, int64_t *pSize, int *pHeader,
                                  int64_t *pFrameCount)
{
    if (!pSize || !pHeader || !pFrameCount) return 1;
    *pSize = 0;
    *pHeader = 0;
    if (duration < 1) return 1;
    const auto output =
        vornak::findPcmOutput(pAudioTable, audioIndex, formatIndex, defaultFormatId);
    if (!output) return 1;

    const int64_t frames = int64_t{output->sampleRate} * duration;
    *pHeader = output->headerBytes;
    *pFrameCount = frames;
    *pSize = frames * output->sampleBytes * output->channels + output->headerBytes;
    return 0;
}

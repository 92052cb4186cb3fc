#include "cmdline/container_option.h"
#include "cmdline/option_text.h"
#include "cmdline/target_tag.h"
#include "include/vornak.h"

#include "base/fixed_text.h"
#include "base/rule_tables.h"

namespace vornak {
namespace {

[[nodiscard]] bool appendFrameCount(FixedText &text, std::int64_t count)
{
    if (count <= 0) return true;
    return text.append(" -num_frames ", Digits(count));
}

} // namespace
} // namespace vornak

int getMusicTranscodeParams2(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int audioIndex,
                             int formatIndex, char *option, char *tag, int defaultFormatId,
                             int64_t frameCount)
{
    using namespace vornak;
    if (!option) return 1;
    FixedText text(option, VORNAK_OPTION_TEXT_SIZE);
    const auto *rule = recordAt(pAudioTable, audioIndex);
    const auto *entry = entryAt(pAudioTable, audioIndex, formatIndex);
    if (!entry) return 1;
    const auto container = findContainerOption(*entry, defaultFormatId);
    if (!container) return 1;

    if (!text.append(orEmpty(container->option)) || !appendFrameCount(text, frameCount) ||
        !text.append(" ", audioOption(*rule, audioIndex))) {
        text.clear();
        return 1;
    }
    return !tag || writeMusicTag(*rule, container->formatId, tag) ? 0 : 1;
}

int getMusicTranscodeParams(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int audioIndex,
                            int formatIndex, char *option, char *tag)
{
    return getMusicTranscodeParams2(pAudioTable, audioIndex, formatIndex, option, tag, 0, 0);
}

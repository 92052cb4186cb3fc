#include "profile/profile_release.h"

#include <cstdlib>

namespace vornak {
namespace {

void release(TANASCODE_FORMAT_MAPPING_ST *table)
{
    for (auto *entry = table; entry && entry->formatId != kEndOfTable; ++entry) {
        std::free(entry->mime);
        std::free(entry->pn);
        std::free(entry->option);
    }
    std::free(table);
}

void release(TRANSCODE_AUDIO_MAPPING_ST *table)
{
    for (auto *rule = table; rule && rule->aCodecId != kEndOfTable; ++rule) {
        release(rule->pFormatTable);
        std::free(rule->option);
    }
    std::free(table);
}

void release(TRANSCODE_VIDEO_MAPPING_ST *table)
{
    for (auto *rule = table; rule && rule->vCodecId != kEndOfTable; ++rule) {
        release(rule->pAudioTable);
        std::free(rule->option);
    }
    std::free(table);
}

} // namespace

void ReleaseProfile::operator()(TRANSCODE_DEVICE_PROFILE_ST *profile) const noexcept
{
    release(profile->pVideoTable);
    release(profile->pAudioTable);
    std::free(profile->deviceName);
    std::free(profile);
}

} // namespace vornak

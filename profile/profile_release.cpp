#include "profile/profile_release.h"

#include "base/rule_tables.h"

#include <cstdlib>

namespace vornak {
namespace {

void release(ContainerEntry *table)
{
    for (auto *entry = table; entry && idOf(*entry) != kEndOfTable; ++entry) {
        std::free(entry->mime);
        std::free(entry->pn);
        std::free(entry->option);
    }
    std::free(table);
}

void release(AudioRule *table)
{
    for (auto *rule = table; rule && idOf(*rule) != kEndOfTable; ++rule) {
        release(rule->pFormatTable);
        std::free(rule->option);
    }
    std::free(table);
}

void release(VideoRule *table)
{
    for (auto *rule = table; rule && idOf(*rule) != kEndOfTable; ++rule) {
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

#include "cmdline/container_option.h"

#include "base/media_ids.h"
#include "base/rule_tables.h"

using namespace vornak; // for the literals

DEFAULT_FORMAT_PARAM_ST s_DefaultFormatParams[21] = {
    {"mp3"_container, "-f mp3"},
    {"wav"_container, "-f wav -write_bext 1"},
    {"flac"_container, "-f flac"},
    {"ogg"_container, "-f ogg"},
    {"ac3"_container, "-f ac3"},
    {"asf"_container, "-f asf"},
    {"mp4"_container, "-f mp4"},
    {"avi"_container, "-f avi"},
    {"mpegps"_container, "-f mpeg"},
    {"mpegts"_container, "-f mpegts"},
    {"matroska"_container, "-f mkvtimestamp_v2"},
    {"flv"_container, "-f flv"},
    {"aiff"_container, "-f aiff"},
    {"au"_container, "-f au"},
    {"adts"_container, "-f adts"},
    {"mpegps_dvd"_container, "-f mpeg2video"},
    {"mpegts_m2ts"_container, "-f mpegts"},
    {"mpegps_mpeg1"_container, "-f mpeg2video"},
    {"mpegts_204"_container, "-f mpegts"},
    {"rm"_container, "-f rm"},
    {kEndOfTable, nullptr},
};

namespace vornak {

std::optional<ContainerOption> findContainerOption(const TANASCODE_FORMAT_MAPPING_ST &entry,
                                                   int defaultFormatId)
{
    if (entry.formatId != kAnyContainer) return ContainerOption{entry.option, entry.formatId};
    if (defaultFormatId == kAnyContainer) return std::nullopt;
    for (const DEFAULT_FORMAT_PARAM_ST &row : s_DefaultFormatParams) {
        if (row.formatId == kEndOfTable) break;
        if (row.formatId != defaultFormatId) continue;
        if (!row.option) break;
        return ContainerOption{row.option, defaultFormatId};
    }
    return std::nullopt;
}

} // namespace vornak

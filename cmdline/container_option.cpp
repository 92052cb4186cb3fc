#include "cmdline/container_option.h"

#include "decision/rule_index.h"

DEFAULT_FORMAT_PARAM_ST s_DefaultFormatParams[21] = {
    {1, "-f mp3"},
    {2, "-f wav -write_bext 1"},
    {3, "-f flac"},
    {5, "-f ogg"},
    {6, "-f ac3"},
    {7, "-f asf"},
    {8, "-f mp4"},
    {9, "-f avi"},
    {10, "-f mpeg"},
    {11, "-f mpegts"},
    {12, "-f mkvtimestamp_v2"},
    {13, "-f flv"},
    {14, "-f aiff"},
    {15, "-f au"},
    {16, "-f adts"},
    {17, "-f mpeg2video"},
    {18, "-f mpegts"},
    {19, "-f mpeg2video"},
    {20, "-f mpegts"},
    {21, "-f rm"},
    {vornak::kEndOfTable, nullptr},
};

namespace vornak {

std::optional<ContainerOption> findContainerOption(const TANASCODE_FORMAT_MAPPING_ST &entry,
                                                   int defaultFormatId)
{
    if (entry.formatId != 0) return ContainerOption{entry.option, entry.formatId};
    if (defaultFormatId == 0) return std::nullopt;
    for (const DEFAULT_FORMAT_PARAM_ST &row : s_DefaultFormatParams) {
        if (row.formatId == kEndOfTable) break;
        if (row.formatId != defaultFormatId) continue;
        if (!row.option) break;
        return ContainerOption{row.option, defaultFormatId};
    }
    return std::nullopt;
}

} // namespace vornak

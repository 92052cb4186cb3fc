// Container ids to pipeline fragments: FormatId_To_GSTMuxDecStr() and FormatId_To_GSTMuxEncStr().
#include "include/vornak.h"

#include "base/media_ids.h"

namespace vornak {
namespace {

struct ContainerRow {
    int container;
    int muxerFlag;
    const char *demuxer;
    const char *muxer; // null: none
};

constexpr ContainerRow s_Containers[] = {
    // id, flag, demultiplexer, multiplexer
    {"wav"_container, 0, "wavparse", nullptr},
    {"ape"_container, 0, "ffdemux_ape", nullptr},
    {"ogg"_container, 0, "oggdemux", "oggmux"},
    {"asf"_container, 0, "asfdemux", "asfmux"},
    {"mp4"_container, 1, "qtdemux", "mp4mux faststart=true"},
    {"avi"_container, 0, "avidemux", "avimux"},
    {"mpegps"_container, 0, "mpegpsdemux", "mpegpsmux"},
    {"mpegts"_container, 0, "mpegtsdemux", "mpegtsmux"},
    {"matroska"_container, 0, "matroskademux", "matroskamux"},
    {"flv"_container, 0, "flvdemux", "flvmux"},
    {"aiff"_container, 0, "ffdemux_aiff", nullptr},
    {"rm"_container, 0, "rmdemux", nullptr},
};

/// The row of a container, whatever its subtype; or null.
const ContainerRow *findContainer(int formatId)
{
    if (formatId <= 0) return nullptr;
    for (const ContainerRow &row : s_Containers)
        if (row.container == containerPart(formatId)) return &row;
    return nullptr;
}

} // namespace
} // namespace vornak

const char *FormatId_To_GSTMuxDecStr(int formatId)
{
    const auto *const row = vornak::findContainer(formatId);
    return row ? row->demuxer : nullptr;
}

const char *FormatId_To_GSTMuxEncStr(int formatId, int *flagOut)
{
    const auto *const row = vornak::findContainer(formatId);
    if (!row || !row->muxer) return nullptr;
    if (flagOut) *flagOut = row->muxerFlag;
    return row->muxer;
}

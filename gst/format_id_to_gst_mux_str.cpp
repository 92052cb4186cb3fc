// Container ids to pipeline fragments: FormatId_To_GSTMuxDecStr() and FormatId_To_GSTMuxEncStr().
#include "include/vornak.h"

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
    {2, 0, "wavparse", nullptr},
    {4, 0, "ffdemux_ape", nullptr},
    {5, 0, "oggdemux", "oggmux"},
    {7, 0, "asfdemux", "asfmux"},
    {8, 1, "qtdemux", "mp4mux faststart=true"},
    {9, 0, "avidemux", "avimux"},
    {10, 0, "mpegpsdemux", "mpegpsmux"},
    {11, 0, "mpegtsdemux", "mpegtsmux"},
    {12, 0, "matroskademux", "matroskamux"},
    {13, 0, "flvdemux", "flvmux"},
    {14, 0, "ffdemux_aiff", nullptr},
    {21, 0, "rmdemux", nullptr},
};

/// The row of a container, whatever its subtype; or null.
const ContainerRow *findContainer(int formatId)
{
    if (formatId <= 0) return nullptr;
    for (const ContainerRow &row : s_Containers)
        if (row.container == (formatId & 0xFFFF)) return &row;
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

// The rule tables of a loaded profile, as the library walks them.
#pragma once

#include "include/vornak.h"

#include <cstddef>
#include <span>

namespace vornak {

using VideoRule = TRANSCODE_VIDEO_MAPPING_ST;
using AudioRule = TRANSCODE_AUDIO_MAPPING_ST;

} // namespace vornak

namespace vornak::tool {

using ContainerEntry = TANASCODE_FORMAT_MAPPING_ST;

inline constexpr int kEndOfTable = -1;

constexpr int idOf(const VideoRule &rule)
{
    return rule.vCodecId;
}
constexpr int idOf(const AudioRule &rule)
{
    return rule.aCodecId;
}
constexpr int idOf(const ContainerEntry &entry)
{
    return entry.formatId;
}

/// The records that an index can name: those past position 255 are never chosen.
template <class Record>
std::span<const Record> recordsOf(const Record *table)
{
    std::size_t count = 0;
    while (table && count < VORNAK_TRANSCODE && idOf(table[count]) != kEndOfTable) ++count;
    return {table, count};
}

constexpr bool isTranscoded(int index)
{
    return index >= VORNAK_TRANSCODE;
}

/// The record that an index names, with or without the transcode flag; null: there is none.
template <class Record>
const Record *recordAt(const Record *table, int index)
{
    const std::span<const Record> records = recordsOf(table);
    const auto position = static_cast<std::size_t>(index % VORNAK_TRANSCODE);
    return index >= 0 && position < records.size() ? &records[position] : nullptr;
}

} // namespace vornak::tool

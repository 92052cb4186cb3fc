// From the indexes that a host hands back to the records that they name.
#pragma once

#include "include/vornak.h"

#include "decision/rule_index.h"

namespace vornak {

/// The record that an index names, or null: no table, or a position at or past its count.
template <class Record>
const Record *recordAt(const Record *table, int index)
{
    const int position = positionOf(index);
    return table && position < table->count ? table + position : nullptr;
}

/// The container entry that two indexes name, or null.
inline const TANASCODE_FORMAT_MAPPING_ST *entryAt(const TRANSCODE_AUDIO_MAPPING_ST *table,
                                                  int audioIndex, int formatIndex)
{
    const auto *rule = recordAt(table, audioIndex);
    return rule ? recordAt(rule->pFormatTable, formatIndex) : nullptr;
}

} // namespace vornak

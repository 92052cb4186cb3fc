// The rule tables of a profile, and how an index that crosses the library's border names a rule.
#pragma once

#include "include/vornak.h"

#include <cstddef>
#include <span>

namespace vornak {

using VideoRule = TRANSCODE_VIDEO_MAPPING_ST;
using AudioRule = TRANSCODE_AUDIO_MAPPING_ST;
using ContainerEntry = TANASCODE_FORMAT_MAPPING_ST;

constexpr int kEndOfTable = -1;              // the id that ends a table
constexpr int kAnyCodec = 0;                 // the id of a rule that takes every codec
constexpr int kAnyContainer = 0;             // the id of an entry that takes every container
constexpr int kTranscode = VORNAK_TRANSCODE; // index: transcode, as the rule at position 0 says
constexpr int kMaxRules = kTranscode;        // positions that an index can name
constexpr int kNoRule = -1;                  // an index while the search runs

/// The field that holds a record's id.
template <class Record>
constexpr auto &idOf(Record &record)
{
    if constexpr (requires { record.vCodecId; })
        return record.vCodecId;
    else if constexpr (requires { record.aCodecId; })
        return record.aCodecId;
    else
        return record.formatId;
}

/// The position that an index names, with or without the transcode flag.
constexpr int positionOf(int index)
{
    return index & (kMaxRules - 1);
}

/// Whether an index that a host hands back carries the transcode flag.
constexpr bool isTranscoded(int index)
{
    return index >= kTranscode;
}

/// The record that an index names, or null: no table, or a position at or past its count.
template <class Record>
const Record *recordAt(const Record *table, int index)
{
    const int position = positionOf(index);
    return table && position < table->count ? table + position : nullptr;
}

/// The container entry that two indexes name, or null.
inline const ContainerEntry *entryAt(const AudioRule *table, int audioIndex, int formatIndex)
{
    const AudioRule *rule = recordAt(table, audioIndex);
    return rule ? recordAt(rule->pFormatTable, formatIndex) : nullptr;
}

/// Position of the first record that `accepts`, or kNoRule: the profile's order breaks ties.
template <class Record, class Predicate>
int findRecord(const Record *table, Predicate accepts)
{
    for (int i = 0; i < kMaxRules && idOf(table[i]) != kEndOfTable; ++i)
        if (accepts(table[i], i)) return i;
    return kNoRule;
}

/// The records that an index can name; none where there is no table.
template <class Record>
std::span<const Record> recordsOf(const Record *table)
{
    std::size_t count = 0;
    while (table && count < kMaxRules && idOf(table[count]) != kEndOfTable) ++count;
    return {table, count};
}

} // namespace vornak

// When the container of a rule and that of a file are the same. An id's low 16 bits are the
// container, the high 16 bits a subtype, 0 for none.
#pragma once

#include "include/vornak.h"

namespace vornak {

constexpr unsigned containerPart(int formatId)
{
    return static_cast<unsigned>(formatId) & 0xFFFF;
}
constexpr unsigned subtypePart(int formatId)
{
    return static_cast<unsigned>(formatId) >> 16;
}

/// Whether an entry serves a wanted container; a subtype counts only where both name one.
constexpr bool agrees(int entryId, int wantedId)
{
    if (containerPart(entryId) != containerPart(wantedId)) return false;
    if (subtypePart(wantedId) == 0) return true;
    return subtypePart(entryId) == 0 || subtypePart(entryId) == subtypePart(wantedId);
}

/// Whether an entry takes a source's container: the wildcard takes any.
constexpr bool takesContainer(const TANASCODE_FORMAT_MAPPING_ST &entry, int srcFormatId)
{
    return containerPart(entry.formatId) == 0 || agrees(entry.formatId, srcFormatId);
}

/// The container that a video's matching sees: elementary and raw forms of the MPEG streams
/// count as the program and transport streams.
constexpr int foldMpegStreams(int formatId)
{
    switch (formatId) {
    case 17:
    case 19:
        return 10;
    case 18:
    case 20:
        return 11;
    default:
        return formatId;
    }
}

} // namespace vornak

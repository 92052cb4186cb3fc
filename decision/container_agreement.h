// When the container of a rule and that of a file are the same.
#pragma once

#include "base/media_ids.h"
#include "base/rule_tables.h"

namespace vornak {

/// Whether an entry serves a wanted container; a subtype counts only where both name one.
constexpr bool agrees(int entryId, int wantedId)
{
    if (containerPart(entryId) != containerPart(wantedId)) return false;
    if (subtypePart(wantedId) == 0) return true;
    return subtypePart(entryId) == 0 || subtypePart(entryId) == subtypePart(wantedId);
}

/// Whether an entry takes a source's container: the wildcard takes any.
constexpr bool takesContainer(const ContainerEntry &entry, int srcFormatId)
{
    return containerPart(entry.formatId) == kAnyContainer || agrees(entry.formatId, srcFormatId);
}

/// The container that a video's matching sees: elementary and raw forms of the MPEG streams
/// count as the program and transport streams.
constexpr int foldMpegStreams(int formatId)
{
    switch (formatId) {
    case "mpegps_dvd"_container:
    case "mpegps_mpeg1"_container:
        return "mpegps"_container;
    case "mpegts_m2ts"_container:
    case "mpegts_204"_container:
        return "mpegts"_container;
    default:
        return formatId;
    }
}

} // namespace vornak

// What a decision is asked and where its answer goes: the arguments that the steps hand on.
#pragma once

namespace vornak {

struct Request {
    int srcFormatId;
    int preferFormatId; // 0 or less: none
    int forceTranscode; // not 0: transcode whatever the rules say
};

/// The caller's variables; those that may be null are skipped.
struct Answer {
    int *audioIndex, *formatIndex;
    char **mime, **pn; // may be null
    int *dstFormatId;  // may be null
};

} // namespace vornak

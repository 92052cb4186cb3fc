#include "decision/find_format.h"

#include "base/debug_line.h"
#include "decision/container_agreement.h"

namespace vornak {
namespace {

int chooseEntry(const ContainerEntry *table, const Request &request, bool transcoding)
{
    if (request.preferFormatId > 0) {
        const int preferred = findRecord(table, [&](const ContainerEntry &entry, int) {
            return agrees(entry.formatId, request.preferFormatId);
        });
        if (preferred != kNoRule) return preferred;
    }
    if (transcoding) return 0;
    return findRecord(table, [&](const ContainerEntry &entry, int) {
        return takesContainer(entry, request.srcFormatId);
    });
}

} // namespace

int findFormat(const ContainerEntry *table, const Request &request, bool transcoding,
               const Answer &answer)
{
    if (!table) return VORNAK_NO_TABLE;

    int index = chooseEntry(table, request, transcoding);
    VORNAK_DEBUG_BOLD("FindFormatTranscode", "*pFormatIndex=%d", index);

    int result = VORNAK_DECIDED;
    if (request.forceTranscode != 0 || index == kNoRule) {
        index = kTranscode;
    } else if (transcoding && table[index].nonSeekable == 1) {
        index = kTranscode;
        if (table[0].nonSeekable == 1) result = VORNAK_NONSEEKABLE;
    }

    const ContainerEntry &used = table[positionOf(index)];
    *answer.formatIndex = index;
    if (answer.mime) *answer.mime = used.mime;
    if (answer.pn) *answer.pn = used.pn;
    if (answer.dstFormatId)
        *answer.dstFormatId = used.formatId == kAnyContainer ? request.srcFormatId : used.formatId;

    if (index == kTranscode && table[0].noTranscode == 1) return VORNAK_NOT_ALLOWED;
    return result;
}

} // namespace vornak

int FindFormatTranscode(TANASCODE_FORMAT_MAPPING_ST *pFormatTable, int srcFormatId,
                        int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
                        int transcoding, int preferFormatId, int forceTranscode)
{
    if (!pFormatIndex) return VORNAK_NO_TABLE;
    return vornak::findFormat(pFormatTable, {srcFormatId, preferFormatId, forceTranscode},
                              transcoding == 1, {nullptr, pFormatIndex, pMime, pPN, pDstFormatId});
}

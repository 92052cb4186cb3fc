#include "container_agreement.h"
#include "decision/rule_index.h"
#include "vornak.h"

#include "base/debug_line.h"

namespace vornak {
namespace {

using FormatEntry = TANASCODE_FORMAT_MAPPING_ST;

/// Position of the first entry that `accepts`, or kNoRule.
template <class Predicate>
int findEntry(const FormatEntry *table, Predicate accepts)
{
    for (int i = 0; i < kMaxRules && table[i].formatId != kEndOfTable; ++i)
        if (accepts(table[i])) return i;
    return kNoRule;
}

int chooseEntry(const FormatEntry *table, int srcFormatId, bool transcoding, int preferFormatId)
{
    if (preferFormatId > 0) {
        const int preferred = findEntry(table, [=](const FormatEntry &entry) {
            return agrees(entry.formatId, preferFormatId);
        });
        if (preferred != kNoRule) return preferred;
    }
    if (transcoding) return 0;
    return findEntry(table,
                     [=](const FormatEntry &entry) { return takesContainer(entry, srcFormatId); });
}

} // namespace
} // namespace vornak

int FindFormatTranscode(TANASCODE_FORMAT_MAPPING_ST *pFormatTable, int srcFormatId,
                        int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
                        int transcoding, int preferFormatId, int forceTranscode)
{
    using namespace vornak;
    if (!pFormatTable || !pFormatIndex) return VORNAK_NO_TABLE;

    const TANASCODE_FORMAT_MAPPING_ST &first = pFormatTable[0];
    *pFormatIndex = chooseEntry(pFormatTable, srcFormatId, transcoding == 1, preferFormatId);
    VORNAK_DEBUG_BOLD("FindFormatTranscode", "*pFormatIndex=%d", *pFormatIndex);

    int result = VORNAK_DECIDED;
    if (forceTranscode != 0 || *pFormatIndex == kNoRule) {
        *pFormatIndex = kTranscode;
    } else if (transcoding == 1 && pFormatTable[*pFormatIndex].nonSeekable == 1) {
        *pFormatIndex = kTranscode;
        if (first.nonSeekable == 1) result = VORNAK_NONSEEKABLE;
    }

    const TANASCODE_FORMAT_MAPPING_ST &used = pFormatTable[positionOf(*pFormatIndex)];
    if (pMime) *pMime = used.mime;
    if (pPN) *pPN = used.pn;
    if (pDstFormatId) *pDstFormatId = used.formatId == 0 ? srcFormatId : used.formatId;

    if (*pFormatIndex == kTranscode && first.noTranscode == 1) return VORNAK_NOT_ALLOWED;
    return result;
}

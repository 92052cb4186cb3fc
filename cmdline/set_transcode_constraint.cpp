#include "include/vornak.h"

#include "base/fixed_text.h"

#include <cstring>

void setTranscodeConstraint(TRANSCODE_CONSTRAINT_ST *set, int slot, const char *text)
{
    if (!set || slot < 0 || slot >= VORNAK_CONSTRAINT_SLOTS || !text) return;
    char(&value)[VORNAK_CONSTRAINT_VALUE_SIZE] = set->value[slot];
    std::memset(value, 0, sizeof value);
    vornak::copyCut(value, sizeof value, {text, strnlen(text, sizeof value - 1)});
}

// Records in a constraint set the limits of a rule that a source lies outside of. What is
// outside is what the matching refuses.
#pragma once

#include "cmdline/limit_slots.h"
#include "include/vornak.h"

#include "base/debug_line.h"
#include "base/fixed_text.h"
#include "decision/comparison.h"

namespace vornak {

/// Marks the slot and stores the limit in it where the source breaks the comparison.
/// @return whether it did
template <class Rule, class Source>
bool recordLimit(const LimitSlot<Comparison<Rule, Source>> &limit, const Rule &rule,
                 const Source &source, TRANSCODE_CONSTRAINT_ST &set)
{
    const Comparison<Rule, Source> &row = limit.comparison;
    if (holds(row, rule, source)) return false;
    char buffer[VORNAK_CONSTRAINT_VALUE_SIZE];
    FixedText text(buffer);
    text.appendCut(Digits(row.first->in(rule)));
    if (row.second) text.appendCut("x", Digits(row.second->in(rule)));
    set.mask |= markOf(limit.slot);
    setTranscodeConstraint(&set, limit.slot, buffer);
    return true;
}

/// Traces a profile or level outside the rule's: no option makes up for those.
template <const auto &Comparisons, class Rule, class Source>
void noteProfileAndLevel(const Rule &rule, const Source &source, const char *func)
{
    if (!holds(comparisonOf(Comparisons, "PROFILE"), rule, source))
        VORNAK_DEBUG(func, "profile id not matched, but not implement.");
    if (!holds(comparisonOf(Comparisons, "LEVEL"), rule, source))
        VORNAK_DEBUG(func, "profile lv not matched, but not implement.");
}

} // namespace vornak

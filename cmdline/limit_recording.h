// Records in a constraint set the limits of a rule that a source lies outside of. What is
// outside is what the matching refuses: both read the rows of decision/.
#pragma once

#include "cmdline/option_formatters.h"
#include "include/vornak.h"

#include "base/debug_line.h"
#include "decision/comparison.h"

#include <cstdio>

namespace vornak {

/// The comparison, by its row, whose limit goes into a slot.
struct LimitSlot {
    int row;
    Slot slot;
};

/// Marks the slot and stores the limit in it where the source breaks the comparison.
/// @return whether it did
template <class Rule, class Source>
bool recordLimit(const Comparison<Rule, Source> &row, const Rule &rule, const Source &source,
                 Slot slot, TRANSCODE_CONSTRAINT_ST &set)
{
    if (holds(row, rule, source)) return false;
    char text[VORNAK_CONSTRAINT_VALUE_SIZE];
    if (row.secondLimit)
        std::snprintf(text, sizeof text, "%dx%d", rule.*row.limit, rule.*row.secondLimit);
    else
        std::snprintf(text, sizeof text, "%d", rule.*row.limit);
    set.mask |= markOf(slot);
    setTranscodeConstraint(&set, slot, text);
    return true;
}

/// Traces a profile or level outside the rule's: no option makes up for those.
template <class Rule, class Source>
void noteProfileAndLevel(const Comparison<Rule, Source> &profile,
                         const Comparison<Rule, Source> &level, const Rule &rule,
                         const Source &source, const char *func)
{
    if (!holds(profile, rule, source))
        VORNAK_DEBUG(func, "profile id not matched, but not implement.");
    if (!holds(level, rule, source))
        VORNAK_DEBUG(func, "profile lv not matched, but not implement.");
}

} // namespace vornak

// What the value of an attribute means, by the unit of the property that it sets.
#pragma once

#include "base/rule_facts.h"
#include "profile/numbers.h"

namespace vornak {

/// Whether an empty value counts as one, and not as none.
constexpr bool mayBeEmpty(Unit unit)
{
    return unit == Unit::Channels || unit == Unit::SampleRate || unit == Unit::BitRate ||
           unit == Unit::Pixels || unit == Unit::Number;
}

/// Whether a number of the unit may be written with K and M.
constexpr bool takesSuffixes(Unit unit)
{
    return unit == Unit::SampleRate || unit == Unit::BitRate || unit == Unit::Pixels ||
           unit == Unit::Number;
}

/// Reads a number of the unit, which is no name and no text. Sample rates are as they are written.
inline Number readNumber(Unit unit, const char *text)
{
    return takesSuffixes(unit) ? readSuffixedNumber(text) : readDecimal(text);
}

} // namespace vornak

// How a table of rules is read from the elements below one parent; the same for all records.
#pragma once

#include "base/rule_facts.h"
#include "include/vornak_host.h"
#include "profile/attribute_value.h"
#include "profile/name_list.h"
#include "profile/sample_rates.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <utility>

namespace vornak {

/// The value of an attribute, or null when it has none or an empty one.
inline const char *readNonEmpty(const XMLNode &element, const char *name)
{
    const char *value = element.getAttribute(name, 0);
    return value && *value != '\0' ? value : nullptr;
}

/// A copy on the heap, the caller's to free.
inline char *copyText(const char *text)
{
    char *copy = strdup(text);
    if (!copy) throw std::bad_alloc();
    return copy;
}

/// The number that a value stands for. @param profiles  what a report calls a name in PROFILE
[[gnu::always_inline]] inline int parseValue(Unit unit, const char *value, const char *profiles)
{
    switch (unit) {
    case Unit::ProfileBits:
        return parseNameList(value, ProfileNameToID, profiles);
    case Unit::ExceptionBits:
        return parseNameList(value, PlayExceptionNameToID, "video PLAY_EXCEPTION");
    case Unit::SampleRate:
        return snapSampleRate(readNumber(unit, value).value);
    default:
        return readNumber(unit, value).value;
    }
}

template <class Rule, class Source>
[[gnu::always_inline]] inline void readProperty(const Property<Rule, Source> &property,
                                                const char *profiles, const XMLNode &element,
                                                Rule &slot)
{
    const char *value = mayBeEmpty(property.unit) ? element.getAttribute(property.attribute)
                                                  : readNonEmpty(element, property.attribute);
    if (!value) return;
    if (property.unit == Unit::Text)
        slot.*property.field.text = copyText(value);
    else
        slot.*property.field.number = parseValue(property.unit, value, profiles);
}

/// Reads properties in their order. They are expanded where they stand, so that each costs what
/// code written by hand would.
template <const auto &Order, class Rule>
void readProperties(const XMLNode &element, const char *profiles, Rule &slot)
{
    [&]<std::size_t... Row>(std::index_sequence<Row...>)
    {
        (readProperty(*Order[Row], profiles, element, slot), ...);
    }
    (std::make_index_sequence<Order.size()>{});
}

/// What sets one record kind apart.
template <class Rule>
struct RuleKind {
    const char *element;
    const char *profiles; ///< what a report calls a name in PROFILE
    /// Asks the registry for the id; false: it has none.
    bool (*identify)(Rule &rule, const XMLNode &element, const char *name);
    void (*readProperties)(const XMLNode &element, const char *profiles, Rule &slot);
    /// Reads the tables inside the rule; false drops the rule.
    bool (*readInner)(const XMLNode &element, Rule &rule);
};

template <class Rule>
Rule *allocateTable(int count)
{
    const std::size_t slots = static_cast<std::size_t>(count) + 1; // one for the end
    auto *table = static_cast<Rule *>(std::calloc(slots, sizeof(Rule)));
    if (!table) throw std::bad_alloc();
    for (Rule &slot : std::span(table, slots)) idOf(slot) = kEndOfTable;
    return table;
}

/// Fills a slot; false, and the slot as before, when the element makes no rule.
template <class Rule>
bool readRule(const XMLNode &element, const RuleKind<Rule> &kind, Rule &slot)
{
    const char *name = readNonEmpty(element, "NAME");
    if (!name) return false;
    if (!kind.identify(slot, element, name) || idOf(slot) == kEndOfTable) {
        idOf(slot) = kEndOfTable;
        return false;
    }
    kind.readProperties(element, kind.profiles, slot);
    if (kind.readInner(element, slot)) return true;
    std::free(slot.option);
    slot = Rule{};
    idOf(slot) = kEndOfTable;
    return false;
}

/**
 * Builds the table of `parent`'s rules. It is in `table` from the start, so that a profile that
 * fails half way is released with it.
 * @return whether there is any element of this kind; without one `table` stays as it is
 */
template <class Rule>
bool readRules(const XMLNode &parent, const RuleKind<Rule> &kind, Rule *&table)
{
    const int count = parent.nChildNode(kind.element);
    if (count < 1) return false;
    table = allocateTable<Rule>(count);
    Rule *slot = table;
    for (int i = 0; i < count; ++i) {
        const XMLNode element = parent.getChildNode(kind.element, i);
        if (element.isEmpty() || !readRule(element, kind, *slot)) continue;
        slot->count = count;
        ++slot;
    }
    return true;
}

} // namespace vornak

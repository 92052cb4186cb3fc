// How a table of rules is read from the elements below one parent; the same for all records.
#pragma once

#include "base/rule_tables.h"
#include "include/vornak_host.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>

namespace vornak {

enum class Taken {
    NonEmpty, ///< an empty value counts as none
    Present,  ///< an empty value is one
};

/// The value of an attribute, or null when it has none.
inline const char *readAttribute(const XMLNode &element, const char *name, Taken taken)
{
    if (taken == Taken::Present) return element.getAttribute(name);
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

/// An attribute of a rule's element.
template <class Rule>
struct Attribute {
    const char *name;
    Taken taken;
    void (*store)(Rule &rule, const char *value);
};

/// Stores a value in a field of the rule.
template <auto field, auto convert>
constexpr auto into = [](auto &rule, const char *value) { rule.*field = convert(value); };

/// What sets one record kind apart.
template <class Rule>
struct RuleKind {
    const char *element;
    /// Asks the registry for the id; false: it has none.
    bool (*identify)(Rule &rule, const XMLNode &element, const char *name);
    std::span<const Attribute<Rule>> attributes; // in the order in which they are read
    /// Reads the tables inside the rule; false drops the rule.
    bool (*readInner)(Rule &rule, const XMLNode &element);
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
    const char *name = readAttribute(element, "NAME", Taken::NonEmpty);
    if (!name) return false;
    if (!kind.identify(slot, element, name) || idOf(slot) == kEndOfTable) {
        idOf(slot) = kEndOfTable;
        return false;
    }
    for (const Attribute<Rule> &attribute : kind.attributes) {
        if (const char *value = readAttribute(element, attribute.name, attribute.taken))
            attribute.store(slot, value);
    }
    if (kind.readInner(slot, element)) return true;
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

// The elements and attributes that a profile has, and what the library knows of each.
#pragma once

#include "base/rule_facts.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

// Elements, as a set: where an attribute or a child belongs.
enum ElementSet : unsigned {
    kDocument = 1,
    kDevice = 2,
    kMusic = 4,
    kVideo = 8,
    kVcodec = 16,
    kAcodec = 32,
    kFormat = 64,
};

struct ElementRow {
    const char *name;
    unsigned element;
    unsigned parents;
};

struct AttributeRow {
    const char *name;
    unsigned elements;
    Unit unit;    ///< of the property; that of a name that stands for an id is Text
    bool isLimit; ///< it turns sources away, and a wildcard ignores it
};

std::span<const ElementRow> elementRows();
std::span<const AttributeRow> attributeRows();

/// The row of that name, or null.
const ElementRow *findElement(std::string_view name);
const AttributeRow *findAttribute(std::string_view name);

/// The names of the elements in a set: "VCODEC or ACODEC".
std::string elementNames(unsigned elements);

/// The names of what may stand in an element.
std::vector<std::string> childNames(unsigned element);
std::vector<std::string> attributeNames(unsigned element);

} // namespace vornak::tool

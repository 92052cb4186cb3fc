#include "tools/check/schema.h"

#include <algorithm>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr ElementRow s_Elements[] = {
    {"DEVICE", kDevice, kDocument},
    {"MUSIC", kMusic, kDevice},
    {"VIDEO", kVideo, kDevice},
    {"VCODEC", kVcodec, kVideo},
    {"ACODEC", kAcodec, kMusic | kVcodec},
    {"FORMAT", kFormat, kAcodec},
};

/// Adds the attributes of a record's properties to those of all. One that is new comes before the
/// next one that isn't, so that each record's stay in their order.
void addAttributes(unsigned element, const auto &properties, std::vector<AttributeRow> &all)
{
    auto place = all.end();
    for (auto property = properties.rbegin(); property != properties.rend(); ++property) {
        const auto known =
            std::ranges::find(all, std::string_view(property->attribute), &AttributeRow::name);
        const bool isLimit = property->bound != Bound::None;
        place = known != all.end()
                    ? known
                    : all.insert(place, {property->attribute, 0, property->unit, isLimit});
        place->elements |= element;
    }
}

std::vector<AttributeRow> allAttributes()
{
    std::vector<AttributeRow> all;
    addAttributes(kVcodec, s_VideoProperties, all);
    addAttributes(kAcodec, s_AudioProperties, all);
    addAttributes(kFormat, s_ContainerProperties, all);
    // the two that an id is made of
    all.insert(all.begin(), {"NAME", kDevice | kVcodec | kAcodec | kFormat, Unit::Text, false});
    all.insert(std::ranges::find(all, std::string_view("MIME"), &AttributeRow::name),
               {"SUBTYPE", kFormat, Unit::Text, false});
    return all;
}

template <class Row>
const Row *findRow(std::span<const Row> rows, std::string_view name)
{
    for (const Row &row : rows)
        if (row.name == name) return &row;
    return nullptr;
}

} // namespace

std::span<const ElementRow> elementRows()
{
    return s_Elements;
}

std::span<const AttributeRow> attributeRows()
{
    static const std::vector<AttributeRow> s_attributes = allAttributes();
    return s_attributes;
}

const ElementRow *findElement(std::string_view name)
{
    return findRow(elementRows(), name);
}

const AttributeRow *findAttribute(std::string_view name)
{
    return findRow(attributeRows(), name);
}

std::string elementNames(unsigned elements)
{
    std::vector<std::string_view> names;
    for (const ElementRow &row : s_Elements)
        if ((row.element & elements) != 0) names.emplace_back(row.name);
    return fmt::format("{}", fmt::join(names, " or "));
}

std::vector<std::string> childNames(unsigned element)
{
    std::vector<std::string> names;
    for (const ElementRow &row : s_Elements)
        if ((row.parents & element) != 0) names.emplace_back(row.name);
    return names;
}

std::vector<std::string> attributeNames(unsigned element)
{
    std::vector<std::string> names;
    for (const AttributeRow &row : attributeRows())
        if ((row.elements & element) != 0) names.emplace_back(row.name);
    return names;
}

} // namespace vornak::tool

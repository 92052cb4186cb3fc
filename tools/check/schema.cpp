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

constexpr AttributeRow s_Attributes[] = {
    // name            where                          reading             limit
    {"NAME", kDevice | kVcodec | kAcodec | kFormat, Reading::Name, false},
    {"PROFILE", kVcodec | kAcodec, Reading::Profiles, true},
    {"LEVEL", kVcodec | kAcodec, Reading::Decimal, true},
    {"MAXWIDTH", kVcodec, Reading::Suffixed, true},
    {"MAXHEIGHT", kVcodec, Reading::Suffixed, true},
    {"MINWIDTH", kVcodec, Reading::Suffixed, true},
    {"MINHEIGHT", kVcodec, Reading::Suffixed, true},
    {"TOLERANCE", kVcodec, Reading::Suffixed, true},
    {"MAXCHANNELS", kAcodec, Reading::Decimal, true},
    {"MINCHANNELS", kAcodec, Reading::Decimal, true},
    {"MAXFREQUENCY", kAcodec, Reading::Frequency, true},
    {"MINFREQUENCY", kAcodec, Reading::Frequency, true},
    {"MAXBITRATE", kVcodec | kAcodec, Reading::Suffixed, true},
    {"MINBITRATE", kVcodec | kAcodec, Reading::Suffixed, true},
    {"PLAY_EXCEPTION", kVcodec, Reading::Exceptions, true},
    {"OPTION", kVcodec | kAcodec | kFormat, Reading::Text, false},
    {"NOTRANSCODE", kVcodec | kAcodec | kFormat, Reading::Flag, false},
    {"VATRANSCODE", kVcodec, Reading::Suffixed, false},
    {"FRAME", kVcodec, Reading::Suffixed, false},
    {"SUBTYPE", kFormat, Reading::Subtype, false},
    {"MIME", kFormat, Reading::Text, false},
    {"PN", kFormat, Reading::Text, false},
    {"NONSEEKABLE", kFormat, Reading::Flag, false},
};

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
    return s_Attributes;
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
    for (const AttributeRow &row : s_Attributes)
        if ((row.elements & element) != 0) names.emplace_back(row.name);
    return names;
}

} // namespace vornak::tool

#include "tools/probe/ebml_doc_type.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace vornak::tool {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint64_t kHeaderId = 0x1A45DFA3;
constexpr std::uint64_t kDocTypeId = 0x4282;

/// Takes a number off the front: the leading zeros of its first byte say how many bytes follow.
/// The one behind those zeros belongs to an id, but not to a size.
std::optional<std::uint64_t> takeNumber(Bytes &bytes, bool isSize)
{
    if (bytes.empty() || bytes[0] == 0) return std::nullopt;
    const auto length = static_cast<std::size_t>(std::countl_zero(bytes[0])) + 1;
    if (bytes.size() < length) return std::nullopt;
    std::uint64_t value = isSize ? bytes[0] & (0xFFU >> length) : bytes[0];
    for (std::size_t i = 1; i < length; ++i) value = value << 8 | bytes[i];
    bytes = bytes.subspan(length);
    return value;
}

struct Element {
    std::uint64_t id;
    Bytes content; ///< cut at the end of what there is
};

std::optional<Element> takeElement(Bytes &bytes)
{
    const auto id = takeNumber(bytes, false);
    if (!id) return std::nullopt;
    const auto size = takeNumber(bytes, true);
    if (!size) return std::nullopt;
    const Bytes content = bytes.first(std::min<std::uint64_t>(*size, bytes.size()));
    bytes = bytes.subspan(content.size());
    return Element{*id, content};
}

} // namespace

std::string ebmlDocType(Bytes start)
{
    const std::optional<Element> header = takeElement(start);
    if (!header || header->id != kHeaderId) return {};
    Bytes rest = header->content;
    while (const std::optional<Element> element = takeElement(rest))
        if (element->id == kDocTypeId)
            return {element->content.begin(), std::ranges::find(element->content, 0)};
    return {};
}

} // namespace vornak::tool

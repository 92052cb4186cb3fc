// Lists of codecs in tables.
#pragma once

#include "base/media_ids.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vornak::tool {

/// Codecs, which a table names in a text with bars between them: "h264|hevc"_codecs.
struct CodecList {
    std::array<int, 64> ids = {};
    std::size_t size = 0;

    constexpr const int *begin() const { return ids.data(); }
    constexpr const int *end() const { return ids.data() + size; }
    constexpr bool has(int codec) const { return std::find(begin(), end(), codec) != end(); }
};
consteval CodecList operator""_codecs(const char *names, std::size_t length)
{
    CodecList codecs{};
    for (std::string_view rest(names, length); !rest.empty();) {
        const std::string_view name = rest.substr(0, rest.find('|'));
        codecs.ids[codecs.size++] = idNamed(s_CodecNames, name);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
    return codecs;
}

} // namespace vornak::tool

// Lists whose entries are separated by bars: "main|high".
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// The entries, without empty ones.
inline std::vector<std::string> splitAtBars(std::string_view list)
{
    std::vector<std::string> entries;
    while (!list.empty()) {
        const std::string_view entry = list.substr(0, list.find('|'));
        if (!entry.empty()) entries.emplace_back(entry);
        list.remove_prefix(std::min(list.size(), entry.size() + 1));
    }
    return entries;
}

} // namespace vornak::tool

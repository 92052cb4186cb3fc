// Which files of a disc are parts of its titles, by their names.
#pragma once

#include "base/ascii_case.h"

#include <string_view>

namespace vornak {

constexpr int kNoTitle = -1;

/// The title set of a DVD, 0 to 99, that a file is a part of. Parts are named "VTS_nn_p" and so
/// on, with p from 1 to 9: 0 is the title set's menu.
constexpr int titleOf(std::string_view name)
{
    constexpr auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (!beginsIgnoringCase(name, "VTS_") || !endsIgnoringCase(name, ".VOB")) return kNoTitle;
    if (!isDigit(name[4]) || !isDigit(name[5]) || !isDigit(name[7]) || name[7] == '0')
        return kNoTitle;
    return (name[4] - '0') * 10 + name[5] - '0';
}

/// Whether a folder of a Blu-ray is that of the streams.
constexpr bool isStreamFolder(std::string_view name)
{
    return equalIgnoringCase(name, "STREAM");
}

constexpr bool isStream(std::string_view name)
{
    return endsIgnoringCase(name, ".m2ts");
}

} // namespace vornak

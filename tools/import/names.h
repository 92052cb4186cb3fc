// The registry's ids of names that are known to be in it, and lists of them.
#pragma once

#include "base/media_ids.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

/// Codecs, which a table names in a text with bars between them: "h264|hevc"_codecs.
struct CodecList {
    std::array<int, 64> ids;
    std::size_t size;

    constexpr bool empty() const { return size == 0; }
    constexpr const int *begin() const { return ids.data(); }
    constexpr const int *end() const { return ids.data() + size; }
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

/// The codec's id; -1: there is no such codec.
int codecNamed(const std::string &name);

/// Whether it is a codec of pictures; all others are of sound.
bool isPicture(int codec);

/// The container's id, with its subtype after a slash ("mp4/isom"); -1: there is no such container.
int containerNamed(const std::string &name);

/// The bits of profiles, or of play exceptions, with bars between the names.
int profilesNamed(std::string_view names);
int playExceptionsNamed(std::string_view names);

/// All profiles of a codec, as bits.
int allProfilesOf(int codec);

/// The pieces of a list without blanks around them; empty ones are left out.
std::vector<std::string> splitList(std::string_view list, char separator);

std::string lowerCase(std::string_view text);

} // namespace vornak::tool

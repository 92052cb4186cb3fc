// The registry's ids of names, lists of them, and levels as people write them.
#pragma once

#include "base/media_ids.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
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

/// The codec's id; -1: there is no such codec.
int codecNamed(const std::string &name);

/// Whether it is a codec of pictures; all others are of sound.
bool isPicture(int codec);

/// The container's id, with its subtype after a slash ("mp4/isom"); -1: there is no such container.
int containerNamed(const std::string &name);

/// The bits of profiles, or of play exceptions, with bars between the names.
int profilesNamed(std::string_view names);
int playExceptionsNamed(std::string_view names);

/// The pieces of a list without blanks around them; empty ones are left out.
std::vector<std::string> splitList(std::string_view list, char separator);

std::string lowerCase(std::string_view text);

std::vector<int> commonPictures();
std::vector<int> commonSounds();

/// All containers, those with subtypes in place of the containers that have them.
std::vector<int> allContainers();

/// The ids for a container's name: MP4 without a further word means its general brands. None: the
/// name isn't known.
std::vector<int> containersNamed(const std::string &name);

/// The levels of the codec, rising, as its streams code them; empty: they have no known order.
std::span<const int> knownLevels(int codec);

/// What a stream says for a level such as "4.1"; nothing: the codec has no such level.
std::optional<int> codedLevel(int codec, const std::string &level);

} // namespace vornak::tool

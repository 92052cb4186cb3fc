// What the registry tells beyond vornak_host.h, for those who list its names or look for the
// nearest one. The names of codecs and containers stand in base/media_ids.h.
#pragma once

#include "base/media_ids.h"
#include "include/vornak_host.h"

#include <optional>
#include <span>

namespace vornak {

/// A profile that a codec has. The same name has the same bit with every codec.
struct ProfileName {
    int codecId;
    int bit;
    const char *name;
};

// Each table holds the names that bits are turned back into, no aliases. They live as long as
// the program.

/// Profiles, those of one codec together by rising bit.
std::span<const ProfileName> profileNames();

/// Play exceptions by rising bit.
std::span<const RegistryName> playExceptionNames();

/// Whether `name`, or what it is an alias of, is a profile of the codec. Bits are shared between
/// codecs, so a bit alone doesn't tell.
bool codecHasProfile(int codecId, const char *name);

/// A name as it is compared: lower case, and without '-', '_' and '.', which people set freely
/// ("H.264", "E-AC-3", "pcm-s16le"). Filled up with NULs.
using FoldedName = std::array<unsigned char, 32>;

/// Nothing for a name that is empty or too long once folded: no table holds such a one.
constexpr std::optional<FoldedName> foldName(const char *name)
{
    FoldedName folded{};
    std::size_t length = 0;
    for (; *name != '\0'; ++name) {
        const char c = *name;
        if (c == '-' || c == '_' || c == '.') continue;
        if (length == folded.size()) return std::nullopt;
        folded[length++] = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    if (length == 0) return std::nullopt;
    return folded;
}

} // namespace vornak

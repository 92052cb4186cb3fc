// All names of the registry, for those who list them or look for the nearest one.
#pragma once

#include "include/vornak_host.h"

#include <span>

namespace vornak {

/// A name and the id or bit that it stands for.
struct RegistryName {
    const char *name;
    int id;
};

/// A profile that a codec has. The same name has the same bit with every codec.
struct ProfileName {
    int codecId;
    int bit;
    const char *name;
};

/// A subtype that a container has; `number` stands in the high 16 bits of the id.
struct SubtypeName {
    int containerId;
    int number;
    const char *name;
};

// Each table holds the names that ids are turned back into, no aliases. They live as long as
// the program.

/// Codecs by rising id, the wildcard "any" first.
std::span<const RegistryName> codecNames();

/// Profiles, those of one codec together by rising bit.
std::span<const ProfileName> profileNames();

/// Play exceptions by rising bit.
std::span<const RegistryName> playExceptionNames();

/// Containers by rising id, the wildcard "any" first.
std::span<const RegistryName> containerNames();

/// Subtypes, those of one container together by rising number.
std::span<const SubtypeName> subtypeNames();

/// Whether `name`, or what it is an alias of, is a profile of the codec. Bits are shared between
/// codecs, so a bit alone doesn't tell.
bool codecHasProfile(int codecId, const char *name);

} // namespace vornak

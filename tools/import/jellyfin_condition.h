// A condition of a Jellyfin device profile, and what a Device profile can say of it.
#pragma once

#include "tools/import/json_object.h"
#include "tools/import/limits.h"
#include "tools/import/player.h"

#include <optional>
#include <string>
#include <vector>

namespace vornak::tool {

struct JellyfinProperty;

struct JellyfinCondition {
    enum Test { Equals, NotEquals, AtMost, AtLeast, AnyOf };

    Test test;
    const JellyfinProperty *property;
    std::vector<std::string> values;
    bool isRequired; ///< a value that isn't known fails
    bool isNegated;  ///< it holds where what the test says does not
    int line;
    std::string text; ///< for people: where it stands and what it says
};

/// The condition that an object holds; nothing, with a remark, for one that isn't understood.
std::optional<JellyfinCondition> readCondition(ObjectReader &object, const std::string &file,
                                               Player &player);

/// What keeps the condition: a union, the stricter one where it can't be said exactly. Nothing: a
/// Device profile has no limit of that kind.
std::optional<Union> thatKeep(const JellyfinCondition &condition, int codec, const Note &note);

/// The same, but nothing where it can't be said exactly either.
std::optional<Union> thatKeepExactly(const JellyfinCondition &condition, int codec);

/// The condition that holds where this one doesn't.
JellyfinCondition negationOf(JellyfinCondition condition);

/// Whether a rule takes streams whose property isn't known, whatever it is limited to.
bool takesUnknown(const JellyfinCondition &condition);

} // namespace vornak::tool

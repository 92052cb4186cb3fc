// What differs between two loaded profiles, rule by rule.
#pragma once

#include "tools/terminal/json_document.h"

#include <optional>
#include <string>
#include <vector>

namespace vornak::tool {

class ProfileSession;

/// A rule or container entry that one of the profiles has, or both have.
struct RulePair {
    struct Place {
        int position; ///< in its table
        int line;
    };

    const char *element;
    std::string name; ///< of its codec or container
    std::optional<Place> left, right;
};

struct ProfileDifference {
    enum Kind {
        Player,   ///< what the player is called
        Section,  ///< one profile alone has rules for such files
        Target,   ///< the first rule of a table, which says what is made, is another one
        Rule,     ///< one profile alone has the innermost rule
        Order,    ///< rules of a table stand in another order
        Property, ///< of the innermost rule
    };
    enum Side { Neither, Left, Right };

    Kind kind;
    const char *section = nullptr;       ///< MUSIC or VIDEO; null: of the profile as a whole
    std::vector<RulePair> rules{};       ///< where it is, the outermost first
    const char *attribute = nullptr;     ///< of a property
    const char *field = nullptr;         ///< the record's
    std::string leftText{}, rightText{}; ///< in words
    Json left{}, right{};                ///< for programs
    Side takesMore = Neither;            ///< of a limit: who takes what the other takes, and more
    bool changesWhatIsTaken = false;     ///< of an order: by another rule, that is
};

/// None for files that load alike. With the sides exchanged the same differences come in the same
/// order, theirs exchanged as well.
std::vector<ProfileDifference> differencesOf(const ProfileSession &left,
                                             const ProfileSession &right);

} // namespace vornak::tool

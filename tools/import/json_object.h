// A JSON document in which each value knows its line, and its objects, whose keys and enumerations
// are written in any letter case.
#pragma once

#include "base/ascii_case.h"
#include "tools/import/player.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

struct JsonMember;

struct JsonValue {
    enum Kind { Null, Scalar, List, Object };

    Kind kind = Null;
    int line = 0;     ///< where it begins, from 1
    std::string text; ///< of a scalar: a text, a number as it is written, "true" or "false"
    std::vector<JsonMember> members; ///< of a list without names
};

struct JsonMember {
    std::string name;
    JsonValue value;
};

/// Parses a document; throws ProfileError for what is no JSON or nests deeper than any profile.
JsonValue parseJson(const std::string &path, const std::string &text);

/// A value of an enumeration, which may be written as its name or its number.
struct NamedNumber {
    const char *name;
    int number;
};

/// The row that is meant, or null.
template <class Row, std::size_t Size>
const Row *findNamed(const Row (&rows)[Size], std::string_view word)
{
    const auto *const row = std::ranges::find_if(rows, [word](const Row &each) {
        return lowerCase(each.name) == lowerCase(word) || std::to_string(each.number) == word;
    });
    return row == std::end(rows) ? nullptr : row;
}

class ObjectReader {
public:
    /// @param place  of the object in the document, such as "CodecProfiles[2]"
    ObjectReader(const std::string &path, const JsonValue &object, std::string place)
        : path_(path), object_(object), place_(std::move(place))
    {}

    const std::string &place() const { return place_; }
    int line() const { return object_.line; }

    /// A text, number or flag as it is written; empty: absent. Throws ProfileError for others.
    std::string text(std::string_view key);

    /// The objects of a list; none: absent. Throws ProfileError for what is no list of objects, or
    /// longer than any.
    std::vector<ObjectReader> list(std::string_view key);

    /// A member that is there. Throws ProfileError for what is no object.
    ObjectReader object(std::string_view key);

    /// Whether there is such a member that is not null.
    bool has(std::string_view key) { return find(key) != nullptr; }

    /// The line of a member that is there.
    int lineOf(std::string_view key) { return find(key)->line; }

    /// Tells of the members that nobody has asked for, and of those that stand there twice.
    void noteUnknown(Player &player) const;

private:
    const JsonValue *find(std::string_view key);

    const std::string &path_;
    const JsonValue &object_;
    std::string place_;
    std::set<std::string> asked_; ///< in lower case
};

} // namespace vornak::tool

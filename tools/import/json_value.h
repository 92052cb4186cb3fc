// A JSON document in which each value knows its line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

struct JsonMember;

struct JsonValue {
    enum Kind { Null, Flag, Number, Text, List, Object };

    Kind kind = Null;
    int line = 0;     ///< where it begins, from 1
    std::string text; ///< of a text, a number as it is written, or "true" and "false"
    std::vector<JsonMember> members; ///< of a list without names
};

struct JsonMember {
    std::string name;
    JsonValue value;
};

/// Parses a document; throws ImportError for what is no JSON or nests deeper than any profile.
JsonValue parseJson(const std::string &path, const std::string &text);

} // namespace vornak::tool

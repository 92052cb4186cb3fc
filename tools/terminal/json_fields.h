// JSON that others wrote: nothing of it is taken for granted.
#pragma once

#include "tools/terminal/json_document.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vornak::tool {

/// Parses a document that nests as deep as the tool's own at most. Throws std::runtime_error with
/// a line that says what is wrong, and at which byte.
Json parseForeign(std::string_view text);

/// The fields of an object. Each throws std::runtime_error with the field's place for one that is
/// missing, of another kind or out of range; those that nobody asks for don't matter.
class JsonFields {
public:
    /// @param object  must stay, and may be no object
    /// @param place   where it stands in the document: "media.video"; empty: it is all of it
    explicit JsonFields(const Json &object, std::string place = {});

    bool isNull(const char *name) const { return field(name).is_null(); }
    JsonFields object(const char *name) const;
    std::vector<JsonFields> list(const char *name) const; ///< of objects

    /// The bytes of a text that printable() made.
    std::string text(const char *name) const;
    std::int64_t number(const char *name, std::int64_t least, std::int64_t most) const;
    double number(const char *name, double most) const; ///< from 0
    bool flag(const char *name) const;

    [[noreturn]] void refuse(const char *name, std::string_view need) const;

private:
    const Json &field(const char *name) const;

    const Json *object_;
    std::string place_;
};

} // namespace vornak::tool

// What all JSON documents of the tool have in common.
#pragma once

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <string>
#include <string_view>

namespace vornak::tool {

/// Fields stay in the order in which they are set.
using Json = nlohmann::ordered_json;

struct JsonField {
    const char *name;
    mutable Json value; ///< which object() takes
};

/// An object of fields with different names. The class's own list of fields takes twice the time,
/// which a folder's documents mostly consist of.
Json object(std::initializer_list<JsonField> fields);

/// The first fields of a document: what it is called, and the version of its fields.
Json documentHead(std::string_view document);

/// The same for a document about a file.
Json documentHead(std::string_view document, const std::string &path);

/// The text of a document up to its list of files, with other fields before that.
std::string listHead(std::string_view document, const Json &fields = Json::object());

/// A file's path as text, and its bytes.
Json pathFields(const std::string &path);

/// A text that is printable, as a document has it: what is written often goes without a tree.
std::string jsonText(std::string_view printableText);

/// What dump() writes, in less time.
std::string compactText(const Json &json);

/// Printable text; null for a null or empty one.
Json textOrNull(const char *text);
Json textOrNull(const std::string &text);

} // namespace vornak::tool

#include "tools/terminal/json_document.h"

#include "tools/terminal/printable.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace vornak::tool {
namespace {

/// Whether JSON has a text as it is, between quotes.
bool isPlain(std::string_view text)
{
    return std::ranges::all_of(
        text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

void append(std::string &to, const std::string &text)
{
    if (isPlain(text))
        to.append(1, '"').append(text).push_back('"');
    else
        to += Json(text).dump();
}

void append(std::string &to, const Json &json)
{
    char before = json.is_object() ? '{' : '[';
    switch (json.type()) {
    case Json::value_t::object:
        for (const auto &[name, value] : json.get_ref<const Json::object_t &>()) {
            to += std::exchange(before, ',');
            append(to, name);
            to += ':';
            append(to, value);
        }
        to += before == ',' ? "}" : "{}";
        break;
    case Json::value_t::array:
        for (const Json &value : json) {
            to += std::exchange(before, ',');
            append(to, value);
        }
        to += before == ',' ? "]" : "[]";
        break;
    case Json::value_t::string:
        append(to, json.get_ref<const std::string &>());
        break;
    case Json::value_t::number_integer:
        fmt::format_to(std::back_inserter(to), "{}", json.get<std::int64_t>());
        break;
    case Json::value_t::boolean:
        to += json.get<bool>() ? "true" : "false";
        break;
    case Json::value_t::null:
        to += "null";
        break;
    default:
        to += json.dump();
    }
}

} // namespace

Json object(std::initializer_list<JsonField> fields)
{
    Json json = Json::object();
    auto &list = json.get_ref<Json::object_t &>();
    list.reserve(fields.size());
    for (const JsonField &field : fields) list.emplace_back(field.name, std::move(field.value));
    return json;
}

Json documentHead(std::string_view document)
{
    return {{"document", document}, {"version", 1}};
}

Json documentHead(std::string_view document, const std::string &path)
{
    Json head = documentHead(document);
    head.update(pathFields(path));
    return head;
}

std::string listHead(std::string_view document, const Json &fields)
{
    std::string text = documentHead(document).dump();
    text.pop_back();
    for (const auto &[name, value] : fields.items())
        text += ",\n" + Json(name).dump() + ':' + value.dump();
    return text + ",\n\"files\":[\n";
}

Json pathFields(const std::string &path)
{
    return object({{"path", printable(path)}, {"pathHex", hexBytes(path)}});
}

std::string jsonText(std::string_view printableText)
{
    std::string json = "\"";
    for (const char c : printableText) {
        if (c == '"' || c == '\\') json += '\\';
        json += c;
    }
    return json + '"';
}

std::string compactText(const Json &json)
{
    std::string text;
    append(text, json);
    return text;
}

Json textOrNull(const char *text)
{
    return text ? Json(printable(text)) : Json();
}

Json textOrNull(const std::string &text)
{
    return text.empty() ? Json() : Json(printable(text));
}

} // namespace vornak::tool

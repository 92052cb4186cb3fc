#include "tools/terminal/json_document.h"

#include "tools/terminal/printable.h"

namespace vornak::tool {

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
    return {{"path", printable(path)}, {"pathHex", hexBytes(path)}};
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

Json textOrNull(const char *text)
{
    return text ? Json(printable(text)) : Json();
}

Json textOrNull(const std::string &text)
{
    return text.empty() ? Json() : Json(printable(text));
}

} // namespace vornak::tool

#include "tools/terminal/json_fields.h"

#include "tools/terminal/printable.h"

#include <fmt/format.h>
#include <stdexcept>

namespace vornak::tool {

Json parseForeign(std::string_view text)
{
    constexpr int kDeepest = 8;
    const auto refuseDepth = [](int depth, Json::parse_event_t, const Json &) {
        if (depth > kDeepest) throw std::runtime_error("its JSON nests too deep");
        return true;
    };
    try {
        return Json::parse(text, refuseDepth);
    } catch (const Json::parse_error &error) {
        throw std::runtime_error(fmt::format("no well-formed JSON, at byte {}", error.byte));
    } catch (const Json::exception &) {
        throw std::runtime_error("a number in its JSON is out of range");
    }
}

JsonFields::JsonFields(const Json &object, std::string place)
    : object_(&object), place_(std::move(place))
{}

void JsonFields::refuse(const char *name, std::string_view need) const
{
    throw std::runtime_error(
        fmt::format("{}{}{} must be {}", place_, place_.empty() ? "" : ".", name, need));
}

const Json &JsonFields::field(const char *name) const
{
    const auto found = object_->find(name); // of no object: the end
    if (found == object_->end()) refuse(name, "there");
    return *found;
}

JsonFields JsonFields::object(const char *name) const
{
    const Json &value = field(name);
    if (!value.is_object()) refuse(name, "an object");
    return JsonFields(value, place_.empty() ? name : place_ + '.' + name);
}

std::vector<JsonFields> JsonFields::list(const char *name) const
{
    std::vector<JsonFields> elements;
    const Json &list = field(name);
    if (!list.is_array()) refuse(name, "a list");
    for (const Json &value : list) {
        const std::string place = fmt::format("{}[{}]", name, elements.size());
        if (!value.is_object()) refuse(place.c_str(), "an object");
        elements.emplace_back(value, place_.empty() ? place : place_ + '.' + place);
    }
    return elements;
}

std::string JsonFields::text(const char *name) const
{
    const Json &value = field(name);
    const auto text = value.is_string() ? unprintable(value.get_ref<const std::string &>())
                                        : std::optional<std::string>();
    if (!text) refuse(name, "a text with \\xNN for what can't be shown, and \\\\ for \\");
    return *text;
}

std::int64_t JsonFields::number(const char *name, std::int64_t least, std::int64_t most) const
{
    const Json &value = field(name);
    const bool fits = value.is_number_unsigned() ? value.get<std::uint64_t>() <= INT64_MAX
                                                 : value.is_number_integer();
    if (!fits || value.get<std::int64_t>() < least || value.get<std::int64_t>() > most)
        refuse(name, fmt::format("a whole number from {} to {}", least, most));
    return value.get<std::int64_t>();
}

double JsonFields::number(const char *name, double most) const
{
    const Json &value = field(name);
    if (!value.is_number() || !(value.get<double>() >= 0) || value.get<double>() > most)
        refuse(name, fmt::format("a number from 0 to {}", most));
    return value.get<double>();
}

bool JsonFields::flag(const char *name) const
{
    const Json &value = field(name);
    if (!value.is_boolean()) refuse(name, "true or false");
    return value.get<bool>();
}

} // namespace vornak::tool

#include "tools/import/object_reader.h"

#include "tools/import/names.h"
#include "tools/import/text_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::size_t kLongestList = 1000;

} // namespace

const NamedNumber *findNamed(std::span<const NamedNumber> rows, std::string_view word)
{
    const auto row = std::ranges::find_if(rows, [word](const NamedNumber &each) {
        return lowerCase(each.name) == lowerCase(word) || std::to_string(each.number) == word;
    });
    return row == rows.end() ? nullptr : &*row;
}

ObjectReader::ObjectReader(const std::string &path, const JsonValue &object, std::string place)
    : path_(path), object_(object), place_(std::move(place))
{}

const JsonValue *ObjectReader::find(std::string_view key)
{
    const std::string lower = lowerCase(key);
    asked_.insert(lower);
    const JsonValue *found = nullptr; // of several, the last
    for (const auto &[name, value] : object_.members)
        if (lowerCase(name) == lower) found = &value;
    return found && found->kind != JsonValue::Null ? found : nullptr;
}

std::string ObjectReader::text(std::string_view key)
{
    const JsonValue *value = find(key);
    if (!value) return {};
    if (value->kind == JsonValue::List || value->kind == JsonValue::Object)
        throw ImportError(path_, value->line, fmt::format("{}{} is no text", place_, key));
    return value->text;
}

std::vector<ObjectReader> ObjectReader::list(std::string_view key)
{
    const JsonValue *value = find(key);
    if (!value) return {};
    const auto isObject = [](const auto &member) { return member.value.kind == JsonValue::Object; };
    if (value->kind != JsonValue::List || !std::ranges::all_of(value->members, isObject))
        throw ImportError(path_, value->line,
                          fmt::format("{}{} is no list of objects", place_, key));
    if (value->members.size() > kLongestList)
        throw ImportError(path_, value->line,
                          fmt::format("{}{} is longer than in any profile", place_, key));
    std::vector<ObjectReader> objects;
    for (const auto &[name, object] : value->members)
        objects.emplace_back(path_, object, fmt::format("{}{}[{}].", place_, key, objects.size()));
    return objects;
}

void ObjectReader::noteUnknown(Player &player) const
{
    std::set<std::string> seen;
    for (const auto &[name, value] : object_.members) {
        const std::string lower = lowerCase(name);
        const Note note = noteAt(player, shownFileName(path_), value.line,
                                 place_ + printable(std::string_view(name).substr(0, 60)));
        if (!asked_.contains(lower) && !lower.starts_with('$'))
            note(Remark::LeftOut, "says nothing of what is played");
        if (!seen.insert(lower).second)
            note(Remark::LeftOut, "a second one of this key: the last counts");
    }
}

} // namespace vornak::tool

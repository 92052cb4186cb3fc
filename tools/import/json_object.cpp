#include "tools/import/json_object.h"

#include "base/ascii_case.h"
#include "tools/profile/regular_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace vornak::tool {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kDeepest = 32;
constexpr std::size_t kMostValues = 200'000;

/// Where the parser stands in the text.
struct Place {
    int line = 1;
    char last = '\0'; // that was read
};

/// The text, handed out a byte at a time while the lines are counted. (A view would do, but clang
/// 14 makes no views of this library.)
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    CountingIterator(const char *at, Place &place) : at_(at), place_(&place) {}

    reference operator*() const { return *at_; }
    CountingIterator &operator++()
    {
        if (*at_ == '\n') ++place_->line;
        place_->last = *at_++;
        return *this;
    }
    bool operator==(const CountingIterator &other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator &other) const { return at_ != other.at_; }

private:
    const char *at_;
    Place *place_;
};

/// Builds the tree from what the parser meets.
class Builder : public nlohmann::json_sax<Json> {
public:
    Builder(const std::string &path, const Place &place) : path_(path), place_(place) {}

    JsonValue take() { return std::move(root_); }

    bool null() override { return add(JsonValue::Null, {}); }
    bool boolean(bool value) override { return add(JsonValue::Scalar, value ? "true" : "false"); }
    bool number_integer(number_integer_t n) override { return addNumber(std::to_string(n)); }
    bool number_unsigned(number_unsigned_t n) override { return addNumber(std::to_string(n)); }
    bool number_float(number_float_t, const string_t &text) override { return addNumber(text); }
    bool string(string_t &text) override { return add(JsonValue::Scalar, text); }
    bool binary(binary_t &) override { return false; } // not in JSON
    bool start_object(std::size_t) override { return open(JsonValue::Object); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(JsonValue::List); }
    bool end_array() override { return close(); }
    bool key(string_t &text) override
    {
        key_ = text;
        return true;
    }

    bool parse_error(std::size_t, const std::string &, const Json::exception &error) override
    {
        // "[json.exception.parse_error.101] parse error at line 3, column 1: REASON"
        const std::string_view what = error.what();
        const std::size_t column = what.find("column");
        const std::size_t reason = what.find(": ", column == std::string_view::npos ? 0 : column);
        throw ProfileError(path_, place_.line,
                           fmt::format("not well-formed JSON{}",
                                       reason == std::string_view::npos
                                           ? ""
                                           : printable(what.substr(reason)).substr(0, 160)));
    }

private:
    /// The parser has read a byte beyond a number.
    bool addNumber(std::string text)
    {
        return add(JsonValue::Scalar, std::move(text), place_.last == '\n' ? 1 : 0);
    }

    bool add(JsonValue::Kind kind, std::string text, int beyond = 0)
    {
        if (++values_ > kMostValues)
            throw ProfileError(path_, place_.line, "it holds more values than any profile");
        JsonValue value{kind, place_.line - beyond, std::move(text), {}};
        if (open_.empty())
            root_ = std::move(value);
        else
            open_.back()->members.push_back({std::exchange(key_, {}), std::move(value)});
        return true;
    }

    bool open(JsonValue::Kind kind)
    {
        if (open_.size() == kDeepest)
            throw ProfileError(path_, place_.line,
                               "lists and objects lie deeper in each other than in "
                               "any profile");
        add(kind, {});
        // a value is only added to the innermost one, so none that is open moves
        open_.push_back(open_.empty() ? &root_ : &open_.back()->members.back().value);
        return true;
    }

    bool close()
    {
        open_.pop_back();
        return true;
    }

    const std::string &path_;
    const Place &place_;
    JsonValue root_;
    std::vector<JsonValue *> open_;
    std::string key_;
    std::size_t values_ = 0;
};

constexpr std::size_t kLongestList = 1000;

} // namespace

JsonValue parseJson(const std::string &path, const std::string &text)
{
    Place place;
    Builder builder(path, place);
    Json::sax_parse(CountingIterator(text.data(), place),
                    CountingIterator(text.data() + text.size(), place), &builder);
    return builder.take();
}

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
        throw ProfileError(path_, value->line, fmt::format("{}{} is no text", place_, key));
    return value->text;
}

ObjectReader ObjectReader::object(std::string_view key)
{
    const JsonValue *value = find(key);
    if (value->kind != JsonValue::Object)
        throw ProfileError(path_, value->line, fmt::format("{}{} is no object", place_, key));
    return {path_, *value, fmt::format("{}{}.", place_, key)};
}

std::vector<ObjectReader> ObjectReader::list(std::string_view key)
{
    const JsonValue *value = find(key);
    if (!value) return {};
    const auto isObject = [](const auto &member) { return member.value.kind == JsonValue::Object; };
    if (value->kind != JsonValue::List || !std::ranges::all_of(value->members, isObject))
        throw ProfileError(path_, value->line,
                           fmt::format("{}{} is no list of objects", place_, key));
    if (value->members.size() > kLongestList)
        throw ProfileError(path_, value->line,
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
        const Note note(player.remarks, shownFileName(path_), value.line,
                        place_ + printable(std::string_view(name).substr(0, 60)));
        if (!asked_.contains(lower) && !lower.starts_with('$'))
            note.leftOut("says nothing of what is played");
        if (!seen.insert(lower).second) note.leftOut("a second one of this key: the last counts");
    }
}

} // namespace vornak::tool

#include "tools/profile/profile_diff.h"

#include "base/media_ids.h"
#include "tools/profile/profile_session.h"
#include "tools/profile/rule_text.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <deque>
#include <map>
#include <tuple>

namespace vornak::tool {
namespace {

using Difference = ProfileDifference;
using Side = Difference::Side;

/// What a profile has for a record of the other; one of the two may be null.
template <class Record>
struct Pair {
    const Record *left, *right;

    const Record &any() const { return left ? *left : *right; }
};

const char *elementOf(const VideoRule &)
{
    return "VCODEC";
}
const char *elementOf(const AudioRule &)
{
    return "ACODEC";
}
const char *elementOf(const ContainerEntry &)
{
    return "FORMAT";
}

const AudioRule *innerTable(const VideoRule &rule)
{
    return rule.pAudioTable;
}
const ContainerEntry *innerTable(const AudioRule &rule)
{
    return rule.pFormatTable;
}
template <class Record>
constexpr bool kHasInner = !std::is_same_v<Record, ContainerEntry>;

template <class Record>
std::vector<const Record *> recordsIn(const Record *table)
{
    std::vector<const Record *> records;
    for (; table && idOf(*table) != kEndOfTable; ++table) records.push_back(table);
    return records;
}

/// All that a record holds, as a text that two have only if they are alike.
template <class Record>
std::string contentOf(const Record &record)
{
    std::string text = fmt::format("{}(", idOf(record));
    for (const auto *property : shownOf(record)) {
        if (property->unit != Unit::Text) {
            text += fmt::format("{},", property->in(record));
        } else if (const char *value = record.*property->field.text) {
            text += fmt::format("{}:{},", std::string_view(value).size(), value);
        } else {
            text += "-,";
        }
    }
    if constexpr (kHasInner<Record>)
        for (const auto *inner : recordsIn(innerTable(record))) text += contentOf(*inner);
    return text + ')';
}

/// Pairs the records of one key in their order, and takes them out of the lists.
template <class Record, class KeyOf>
void pairBy(KeyOf keyOf, std::vector<const Record *> &left, std::vector<const Record *> &right,
            std::vector<Pair<Record>> &pairs)
{
    std::map<decltype(keyOf(*left.front())), std::deque<const Record *>> waiting;
    for (const Record *record : right) waiting[keyOf(*record)].push_back(record);
    std::erase_if(left, [&](const Record *record) {
        const auto found = waiting.find(keyOf(*record));
        if (found == waiting.end() || found->second.empty()) return false;
        pairs.push_back({record, found->second.front()});
        found->second.pop_front();
        return true;
    });
    right.clear();
    for (const auto &[key, records] : waiting)
        right.insert(right.end(), records.begin(), records.end());
    std::ranges::sort(right); // as they stand in their table
}

/// The rules of two tables: those that are alike belong together, then those of one codec or
/// container in their order. By the lesser of their positions.
template <class Record>
std::vector<Pair<Record>> pairsOf(const Record *leftTable, const Record *rightTable)
{
    std::vector<const Record *> left = recordsIn(leftTable), right = recordsIn(rightTable);
    std::vector<Pair<Record>> pairs;
    pairBy(contentOf<Record>, left, right, pairs);
    pairBy([](const Record &record) { return idOf(record); }, left, right, pairs);
    for (const Record *record : left) pairs.push_back({record, nullptr});
    for (const Record *record : right) pairs.push_back({nullptr, record});
    std::ranges::sort(pairs, {}, [&](const Pair<Record> &pair) {
        const auto first = pair.left ? pair.left - leftTable : pair.right - rightTable;
        const auto second = pair.right ? pair.right - rightTable : first;
        return std::tuple(std::min(first, second), std::max(first, second), idOf(pair.any()));
    });
    return pairs;
}

/// Whether rules that may take the same file have changed places.
/// @param pairs  in the left side's order; right  the other side's table
template <class Record>
bool changesWhatIsTaken(const std::vector<Pair<Record>> &pairs, const Record *right)
{
    constexpr int kAny = 0;             // the wildcard's id
    std::map<int, std::ptrdiff_t> last; // positions on the right side, of each id
    std::ptrdiff_t lastOfAll = 0;
    for (const Pair<Record> &pair : pairs) {
        const int id = kHasInner<Record> ? idOf(*pair.left) : containerPart(idOf(*pair.left));
        const std::ptrdiff_t position = pair.right - right;
        if (position < last[id] || position < last[kAny]) return true;
        if (id == kAny && position < lastOfAll) return true;
        last[id] = position;
        lastOfAll = std::max(lastOfAll, position);
    }
    return false;
}

template <class Record, class Source>
Json valueOf(const Property<Record, Source> &property, const Record &record)
{
    switch (property.unit) {
    case Unit::Text:
        return textOrNull(record.*property.field.text);
    case Unit::ProfileBits:
        return profileTexts(property.in(record), idOf(record));
    case Unit::ExceptionBits:
        return playExceptionTexts(property.in(record));
    default:
        return property.in(record);
    }
}

template <class Record, class Source>
std::string valueText(const Property<Record, Source> &property, const Record &record)
{
    if (property.unit == Unit::Text) {
        const char *text = record.*property.field.text;
        return text ? printable(text) : "none";
    }
    if (property.bound == Bound::None && property.unit != Unit::Pixels)
        return std::to_string(property.in(record));
    const std::string limit = limitText(property, record);
    return limit.empty() ? "no limit" : limit;
}

template <class Record, class Source>
bool isSame(const Property<Record, Source> &property, const Record &left, const Record &right)
{
    if (property.unit != Unit::Text) return property.in(left) == property.in(right);
    const char *one = left.*property.field.text;
    const char *other = right.*property.field.text;
    return one && other ? std::string_view(one) == other : one == other;
}

/// Which of two sides takes more, by what each takes: less than the other for sure, or perhaps.
Side wider(bool isLeftWithin, bool isRightWithin)
{
    if (isLeftWithin == isRightWithin) return Difference::Neither;
    return isLeftWithin ? Difference::Right : Difference::Left;
}

/// Whether it limits anything. Of a pair of sizes, each needs the other.
template <class Record, class Source>
bool limits(const Property<Record, Source> &property, const Record &record)
{
    if (property.unit == Unit::Text || property.in(record) == 0 ||
        (property.unit != Unit::ExceptionBits && property.in(record) < 0))
        return false;
    for (const auto &row : comparisonsOf(record))
        if (row.second && (row.first == &property || row.second == &property))
            return row.first->in(record) > 0 && row.second->in(record) > 0;
    return true;
}

/// Whether sizes are not bounds but what pictures come close to.
template <class Record>
bool isClose(const Record &record)
{
    return std::ranges::any_of(comparisonsOf(record), [&](const auto &row) {
        return row.closeness && row.closeness->in(record) > 0;
    });
}

template <class Record, class Source>
Side takesMore(const Property<Record, Source> &property, const Record &left, const Record &right)
{
    if (property.unit == Unit::Pixels && (isClose(left) || isClose(right)))
        return Difference::Neither;
    const bool isLimited = limits(property, left), isOtherLimited = limits(property, right);
    if (!isLimited || !isOtherLimited) return wider(isLimited, isOtherLimited);
    const auto one = static_cast<unsigned>(property.in(left));
    const auto other = static_cast<unsigned>(property.in(right));
    switch (property.bound) {
    case Bound::AtMost:
        return wider(one <= other, other <= one);
    case Bound::AtLeast:
        return wider(one >= other, other >= one);
    case Bound::Within:
        return wider((one & ~other) == 0, (other & ~one) == 0);
    case Bound::NotWithin:
        return wider((other & ~one) == 0, (one & ~other) == 0);
    default:
        return Difference::Neither;
    }
}

class Comparer {
public:
    Comparer(const ProfileSession &left, const ProfileSession &right) : left_(left), right_(right)
    {}

    std::vector<Difference> compare()
    {
        const auto &left = left_.profile(), &right = right_.profile();
        if (std::string_view(left.deviceName) != right.deviceName)
            add(Difference::Player, printable(left.deviceName), printable(right.deviceName));
        compareSections("MUSIC", left.pAudioTable, right.pAudioTable);
        compareSections("VIDEO", left.pVideoTable, right.pVideoTable);
        return std::move(all_);
    }

private:
    Difference &add(Difference::Kind kind, std::string left = {}, std::string right = {})
    {
        Difference difference{kind, section_, rules_};
        if (!left.empty()) difference.left = left;
        if (!right.empty()) difference.right = right;
        difference.leftText = std::move(left);
        difference.rightText = std::move(right);
        return all_.emplace_back(std::move(difference));
    }

    template <class Record>
    void compareSections(const char *section, const Record *left, const Record *right)
    {
        section_ = section;
        if (!left == !right) return compareTables(left, right);
        Difference &difference =
            add(Difference::Section, left ? "rules" : "none", right ? "rules" : "none");
        difference.left = left != nullptr;
        difference.right = right != nullptr;
    }

    template <class Record>
    void compareTables(const Record *left, const Record *right)
    {
        const std::vector<Pair<Record>> pairs = pairsOf(left, right);
        if (pairs.empty()) return;
        compareFirst(pairs, left, right);
        compareOrder(pairs, left, right);
        for (const Pair<Record> &pair : pairs) {
            rules_.push_back({elementOf(pair.any()), ruleName(pair.any()),
                              placeOf(left_, left, pair.left), placeOf(right_, right, pair.right)});
            if (pair.left && pair.right)
                compareRules(*pair.left, *pair.right);
            else
                add(Difference::Rule, describe(pair.left), describe(pair.right));
            rules_.pop_back();
        }
    }

    template <class Record>
    static std::optional<RulePair::Place> placeOf(const ProfileSession &session,
                                                  const Record *table, const Record *record)
    {
        if (!record) return std::nullopt;
        return RulePair::Place{static_cast<int>(record - table), session.lineOf(record)};
    }

    template <class Record>
    static std::string describe(const Record *record)
    {
        if (!record) return {};
        if constexpr (kHasInner<Record>)
            return limitsText(*record);
        else
            return "taken";
    }

    /// The first rule says what is made of the files that no rule takes.
    template <class Record>
    void compareFirst(const std::vector<Pair<Record>> &pairs, const Record *left,
                      const Record *right)
    {
        const bool areBoth = !recordsIn(left).empty() && !recordsIn(right).empty();
        const auto isFirst = [&](const Pair<Record> &pair) {
            return pair.left == left && pair.right == right;
        };
        if (areBoth && std::ranges::none_of(pairs, isFirst))
            add(Difference::Target, named(left_, *left), named(right_, *right));
    }

    template <class Record>
    static std::string named(const ProfileSession &session, const Record &record)
    {
        return fmt::format("{} (line {})", ruleName(record), session.lineOf(&record));
    }

    template <class Record>
    void compareOrder(std::vector<Pair<Record>> pairs, const Record *left, const Record *right)
    {
        std::erase_if(pairs, [](const Pair<Record> &pair) { return !pair.left || !pair.right; });
        auto byRight = pairs;
        std::ranges::sort(pairs, {}, [&](const auto &pair) { return pair.left - left; });
        std::ranges::sort(byRight, {}, [&](const auto &pair) { return pair.right - right; });
        const bool isChange = changesWhatIsTaken(pairs, right);
        const auto isSamePair = [](const auto &one, const auto &other) {
            return one.left == other.left;
        };
        // what the two orders begin and end with alike is of no interest
        const auto start = std::ranges::mismatch(pairs, byRight, isSamePair);
        pairs.erase(pairs.begin(), start.in1);
        byRight.erase(byRight.begin(), start.in2);
        while (!pairs.empty() && isSamePair(pairs.back(), byRight.back())) {
            pairs.pop_back();
            byRight.pop_back();
        }
        if (pairs.empty()) return;
        std::vector<std::string> leftNames, rightNames;
        for (const auto &pair : pairs) leftNames.push_back(named(left_, *pair.left));
        for (const auto &pair : byRight) rightNames.push_back(named(right_, *pair.right));
        Difference &difference =
            add(Difference::Order, fmt::format("{}", fmt::join(leftNames, ", ")),
                fmt::format("{}", fmt::join(rightNames, ", ")));
        difference.left = leftNames;
        difference.right = rightNames;
        difference.changesWhatIsTaken = isChange;
    }

    template <class Record>
    void compareRules(const Record &left, const Record &right)
    {
        for (const auto *property : shownOf(left)) {
            if (isSame(*property, left, right)) continue;
            Difference &difference =
                add(Difference::Property, valueText(*property, left), valueText(*property, right));
            difference.attribute = property->attribute;
            difference.field = property->name;
            difference.left = valueOf(*property, left);
            difference.right = valueOf(*property, right);
            if constexpr (kHasInner<Record>)
                difference.takesMore = takesMore(*property, left, right);
        }
        if constexpr (kHasInner<Record>) compareTables(innerTable(left), innerTable(right));
    }

    const ProfileSession &left_, &right_;
    const char *section_ = nullptr;
    std::vector<RulePair> rules_;
    std::vector<Difference> all_;
};

} // namespace

std::vector<ProfileDifference> differencesOf(const ProfileSession &left,
                                             const ProfileSession &right)
{
    return Comparer(left, right).compare();
}

} // namespace vornak::tool

#include "tools/import/limits.h"

#include <algorithm>

namespace vornak::tool {
namespace {

constexpr Range Limits::*s_Ranges[] = {&Limits::width, &Limits::height, &Limits::bitrate,
                                       &Limits::channels, &Limits::sampleRate};

/// The lower of two limits of which 0 is none.
int lower(int one, int other)
{
    return one == 0 || other == 0 ? std::max(one, other) : std::min(one, other);
}

bool isAtMost(int inner, int outer)
{
    return outer == 0 || (inner != 0 && inner <= outer);
}

bool isWithin(int inner, int outer)
{
    return outer == 0 || (inner != 0 && (inner & ~outer) == 0);
}

} // namespace

std::optional<Limits> intersection(const Limits &one, const Limits &other)
{
    Limits both = one;
    if (both.codec == 0) both.codec = other.codec;
    if (other.codec != 0 && both.codec != other.codec) return std::nullopt;
    both.profiles = one.profiles & other.profiles;
    if (one.profiles == 0 || other.profiles == 0)
        both.profiles = one.profiles | other.profiles;
    else if (both.profiles == 0)
        return std::nullopt;
    for (const auto range : s_Ranges) {
        const Range left = one.*range, right = other.*range;
        both.*range = {std::max(left.least, right.least), lower(left.most, right.most)};
        if ((both.*range).most != 0 && (both.*range).least > (both.*range).most)
            return std::nullopt;
    }
    both.level = lower(one.level, other.level);
    both.refused |= other.refused;
    return both;
}

bool contains(Range outer, Range inner)
{
    return outer.least <= inner.least && isAtMost(inner.most, outer.most);
}

bool contains(Range outer, int value)
{
    return contains(outer, {value, value});
}

bool contains(const Limits &outer, const Limits &inner)
{
    const auto isIn = [&](auto range) { return contains(outer.*range, inner.*range); };
    return (outer.codec == 0 || outer.codec == inner.codec) &&
           isWithin(inner.profiles, outer.profiles) && isAtMost(inner.level, outer.level) &&
           (outer.refused & ~inner.refused) == 0 && std::ranges::all_of(s_Ranges, isIn);
}

void add(Union &all, const Limits &limits)
{
    for (const Limits &other : all)
        if (contains(other, limits)) return;
    std::erase_if(all, [&](const Limits &other) { return contains(limits, other); });
    all.push_back(limits);
}

Union intersection(const Union &one, const Union &other)
{
    Union both;
    for (const Limits &left : one)
        for (const Limits &right : other)
            if (const auto common = intersection(left, right)) add(both, *common);
    return both;
}

std::vector<Limits> regionsOf(const std::vector<Limits> &all)
{
    std::vector<Limits> regions;
    const auto addNew = [&](const Limits &region) {
        if (std::ranges::find(regions, region) == regions.end()) regions.push_back(region);
    };
    std::ranges::for_each(all, addNew);
    for (const Limits &limits : all)
        for (std::size_t i = 0; i < regions.size() && regions.size() < kMostRegions; ++i)
            if (const auto common = intersection(limits, regions[i])) addNew(*common);
    const auto containing = [&](const Limits &region) {
        return std::ranges::count_if(
            all, [&](const Limits &limits) { return contains(limits, region); });
    };
    std::ranges::stable_sort(regions, std::ranges::greater{}, containing);
    return regions;
}

} // namespace vornak::tool

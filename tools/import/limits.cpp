#include "tools/import/limits.h"

#include <algorithm>

namespace vornak::tool {
namespace {

constexpr Range PictureLimits::*s_PictureRanges[] = {&PictureLimits::width, &PictureLimits::height,
                                                     &PictureLimits::bitrate};
constexpr Range SoundLimits::*s_SoundRanges[] = {&SoundLimits::channels, &SoundLimits::bitrate,
                                                 &SoundLimits::sampleRate};

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

/// What pictures and sound have alike.
template <class Limits, class Ranges>
bool intersect(Limits &limits, const Limits &other, const Ranges &ranges)
{
    if (limits.codec == 0) limits.codec = other.codec;
    if (other.codec != 0 && limits.codec != other.codec) return false;
    const int common = limits.profiles & other.profiles;
    if (limits.profiles != 0 && other.profiles != 0 && common == 0) return false;
    limits.profiles = common != 0 ? common : limits.profiles | other.profiles;
    for (const auto range : ranges) {
        const std::optional<Range> both = intersection(limits.*range, other.*range);
        if (!both) return false;
        limits.*range = *both;
    }
    return true;
}

template <class Limits, class Ranges>
bool containsIn(const Limits &outer, const Limits &inner, const Ranges &ranges)
{
    return (outer.codec == 0 || outer.codec == inner.codec) &&
           isWithin(inner.profiles, outer.profiles) && std::ranges::all_of(ranges, [&](auto range) {
               return contains(outer.*range, inner.*range);
           });
}

} // namespace

std::optional<Range> intersection(Range one, Range other)
{
    const Range both{std::max(one.least, other.least), lower(one.most, other.most)};
    if (both.most != 0 && both.least > both.most) return std::nullopt;
    return both;
}

bool contains(Range outer, Range inner)
{
    return outer.least <= inner.least && isAtMost(inner.most, outer.most);
}

std::optional<PictureLimits> intersection(const PictureLimits &one, const PictureLimits &other)
{
    PictureLimits both = one;
    if (!intersect(both, other, s_PictureRanges)) return std::nullopt;
    both.level = lower(one.level, other.level);
    both.refused |= other.refused;
    return both;
}

bool contains(const PictureLimits &outer, const PictureLimits &inner)
{
    return containsIn(outer, inner, s_PictureRanges) && isAtMost(inner.level, outer.level) &&
           (outer.refused & ~inner.refused) == 0;
}

std::optional<SoundLimits> intersection(const SoundLimits &one, const SoundLimits &other)
{
    SoundLimits both = one;
    if (!intersect(both, other, s_SoundRanges)) return std::nullopt;
    return both;
}

bool contains(const SoundLimits &outer, const SoundLimits &inner)
{
    return containsIn(outer, inner, s_SoundRanges);
}

} // namespace vornak::tool

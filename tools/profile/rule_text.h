// A rule in words: the rows of base/rule_facts.h, written out.
#pragma once

#include "base/rule_facts.h"
#include "tools/profile/id_names.h"

#include <fmt/format.h>
#include <string>
#include <vector>

namespace vornak::tool {

/// The properties of a record, as they are shown.
inline const auto &shownOf(const VideoRule &)
{
    return s_VideoShown;
}
inline const auto &shownOf(const AudioRule &)
{
    return s_AudioShown;
}
inline const auto &shownOf(const ContainerEntry &)
{
    return s_ContainerShown;
}

/// What it and a source are compared by; of containers, the id alone.
inline const auto &comparisonsOf(const VideoRule &)
{
    return s_VideoComparisons;
}
inline const auto &comparisonsOf(const AudioRule &)
{
    return s_AudioComparisons;
}

/// The name of its codec, or of its container.
template <class Rule>
std::string ruleName(const Rule &rule)
{
    return codecText(idOf(rule));
}
inline std::string ruleName(const ContainerEntry &entry)
{
    return containerText(entry.formatId);
}

/// What a limit asks of a source; empty: nothing.
template <class Rule, class Source>
std::string limitText(const Property<Rule, Source> &property, const Rule &rule)
{
    const int limit = property.in(rule);
    const char *bound = property.bound == Bound::AtMost ? "at most" : "at least";
    if (property.unit == Unit::ExceptionBits && limit != 0)
        return fmt::format("but not {}", fmt::join(playExceptionTexts(limit), "|"));
    if (limit <= 0) return {};
    if (property.bound == Bound::Close) return fmt::format("within {} pixels", limit);
    switch (property.unit) {
    case Unit::ProfileBits:
        return fmt::format("profile {}", fmt::join(profileTexts(limit, idOf(rule)), "|"));
    case Unit::Level:
        return fmt::format("level {} {}", bound, limit);
    case Unit::Channels:
        return fmt::format("{} {}", bound, channelsText(limit));
    case Unit::SampleRate:
        return fmt::format("{} {} Hz", bound, limit);
    case Unit::BitRate:
        return fmt::format("{} {} bit/s", bound, limit);
    default:
        return fmt::format("{} {}", bound, limit);
    }
}

/// A pair of sizes; one alone limits nothing, and with a tolerance both are to be met.
template <class Rule, class Source>
std::string sizeText(const Comparison<Rule, Source> &row, const Rule &rule)
{
    const int width = row.first->in(rule), height = row.second->in(rule);
    const int tolerance = row.closeness->in(rule);
    if (width <= 0 && height <= 0) return {};
    if (width <= 0 || height <= 0)
        return fmt::format("half a pair of sizes ({}x{}, no limit)", width, height);
    if (tolerance > 0) return fmt::format("within {} pixels of {}x{}", tolerance, width, height);
    return fmt::format("{} {}x{}", row.first->bound == Bound::AtMost ? "at most" : "at least",
                       width, height);
}

/// All limits of a rule.
template <class Rule>
std::string limitsText(const Rule &rule)
{
    std::vector<std::string> limits;
    for (const auto *property : shownOf(rule))
        for (const auto &row : comparisonsOf(rule)) {
            if (row.first != property) continue;
            std::string limit = row.second ? sizeText(row, rule) : limitText(*property, rule);
            if (!limit.empty()) limits.push_back(std::move(limit));
        }
    return limits.empty() ? "no limits" : fmt::format("{}", fmt::join(limits, ", "));
}

} // namespace vornak::tool

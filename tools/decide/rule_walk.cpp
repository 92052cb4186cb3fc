#include "tools/decide/rule_walk.h"

#include "decision/comparison.h"
#include "decision/container_agreement.h"

#include <algorithm>
#include <iterator>

namespace vornak::tool {
namespace {

constexpr std::string_view codeOf(std::string_view attribute)
{
    for (const auto &row : s_RefusalCodes)
        if (row.attribute == attribute) return row.code;
    return {};
}

consteval bool haveCodes(const auto &comparisons)
{
    return std::ranges::none_of(
        comparisons, [](const auto &row) { return codeOf(row.first->attribute).empty(); });
}
static_assert(haveCodes(s_VideoComparisons) && haveCodes(s_AudioComparisons));

template <class Rule, class Source>
Refusal refusalBy(const Comparison<Rule, Source> &row, const Rule &rule, const Source &source)
{
    Refusal refusal{.code = codeOf(row.first->attribute),
                    .field = row.first->name,
                    .bound = row.first->bound,
                    .unit = row.first->unit,
                    .limit = row.first->in(rule),
                    .actual = row.first->in(source),
                    .codecId = source.codecId};
    if (row.second) {
        refusal.secondField = row.second->name;
        refusal.secondLimit = row.second->in(rule);
        refusal.secondActual = row.second->in(source);
        refusal.tolerance = row.closeness->in(rule);
    }
    return refusal;
}

/// Everything that refuses the source, the comparison that the library ends at first.
template <const auto &Table, class Rule, class Source>
std::vector<Refusal> refusalsBy(const Rule &rule, const Source &source)
{
    std::vector<Refusal> refusals;
    const int first = findRefusal<Table>(rule, source);
    for (auto row = static_cast<std::size_t>(first); first >= 0 && row < std::size(Table); ++row)
        if (!holds(Table[row], rule, source))
            refusals.push_back(refusalBy(Table[row], rule, source));
    return refusals;
}

template <const auto &Table, class Rule, class Source>
Visit visit(const Rule &rule, const Source &source)
{
    Visit visit{.record = &rule, .id = idOf(rule)};
    if (visit.id == kAnyCodec) {
        visit.verdict = Verdict::TakesAny;
    } else if (visit.id == source.codecId) {
        visit.refusals = refusalsBy<Table>(rule, source);
        visit.verdict = visit.refusals.empty() ? Verdict::Takes : Verdict::Refuses;
    }
    return visit;
}

/// Visits the records until one takes the source.
template <class Record, class VisitOne>
std::vector<Visit> walk(const Record *table, VisitOne visitOne)
{
    std::vector<Visit> visits;
    for (const Record &record : recordsOf(table)) {
        visits.push_back(visitOne(record));
        visits.back().position = static_cast<int>(visits.size()) - 1;
        if (visits.back().takes()) break;
    }
    return visits;
}

void markNearestMiss(std::vector<Visit> &visits)
{
    if (takingVisit(visits)) return;
    Visit *nearest = nullptr;
    for (Visit &visit : visits)
        if (visit.verdict == Verdict::Refuses &&
            (!nearest || visit.refusals.size() < nearest->refusals.size()))
            nearest = &visit;
    if (nearest) nearest->isNearestMiss = true;
}

} // namespace

std::vector<Visit> walkVideoRules(const VideoRule *table, const VideoSource &source,
                                  bool matchVideo)
{
    std::vector<Visit> visits = walk(table, [&](const VideoRule &rule) {
        if (!matchVideo)
            return Visit{.record = &rule, .id = rule.vCodecId, .verdict = Verdict::Unmatched};
        Visit one = visit<s_VideoComparisons>(rule, source);
        const int covered = source.codecFlag & rule.playException;
        if (one.id == source.codecId && covered != source.codecFlag)
            one.coveredExceptions = covered;
        return one;
    });
    markNearestMiss(visits);
    return visits;
}

std::vector<Visit> walkAudioRules(const AudioRule *table, const AudioSource &source)
{
    std::vector<Visit> visits =
        walk(table, [&](const AudioRule &rule) { return visit<s_AudioComparisons>(rule, source); });
    markNearestMiss(visits);
    return visits;
}

std::vector<Visit> walkEntries(const ContainerEntry *table, int formatId)
{
    return walk(table, [&](const ContainerEntry &entry) {
        Visit visit{.record = &entry, .id = entry.formatId};
        if (!takesContainer(entry, formatId)) return visit;
        visit.verdict =
            containerPart(entry.formatId) == kAnyContainer ? Verdict::TakesAny : Verdict::Takes;
        return visit;
    });
}

const Visit *takingVisit(const std::vector<Visit> &visits)
{
    return !visits.empty() && visits.back().takes() ? &visits.back() : nullptr;
}

const Visit *nearestMiss(const std::vector<Visit> &visits)
{
    const auto found = std::find_if(visits.begin(), visits.end(),
                                    [](const Visit &visit) { return visit.isNearestMiss; });
    return found == visits.end() ? nullptr : &*found;
}

} // namespace vornak::tool

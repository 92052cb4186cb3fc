#include "tools/decide/rule_walk.h"

#include "decision/container_agreement.h"

#include <algorithm>
#include <iterator>

namespace vornak::tool {
namespace {

/// What the library's comparisons don't say of themselves. In the order of their tables.
struct RowNames {
    std::string_view code;
    Unit unit;
};
constexpr RowNames s_VideoRows[] = {
    {"play-exception", Unit::ExceptionBits},
    {"profile", Unit::ProfileBits},
    {"level", Unit::Level},
    {"max-size", Unit::PictureSize},
    {"min-size", Unit::PictureSize},
    {"max-bitrate", Unit::BitRate},
    {"min-bitrate", Unit::BitRate},
};
constexpr RowNames s_AudioRows[] = {
    {"profile", Unit::ProfileBits},        {"level", Unit::Level},
    {"max-channels", Unit::Channels},      {"min-channels", Unit::Channels},
    {"max-bitrate", Unit::BitRate},        {"min-bitrate", Unit::BitRate},
    {"max-sample-rate", Unit::SampleRate}, {"min-sample-rate", Unit::SampleRate},
};
static_assert(std::size(s_VideoRows) == kVideoRows && std::size(s_AudioRows) == kAudioRows);

template <class Rule, class Source>
Refusal refusalBy(const Comparison<Rule, Source> &row, const RowNames &names, const Rule &rule,
                  const Source &source)
{
    Refusal refusal{.code = names.code,
                    .field = row.field,
                    .bound = row.bound,
                    .unit = names.unit,
                    .limit = rule.*row.limit,
                    .actual = source.*row.value,
                    .codecId = source.codecId};
    if (row.secondLimit) {
        refusal.secondField = row.secondField;
        refusal.secondLimit = rule.*row.secondLimit;
        refusal.secondActual = source.*row.secondValue;
        refusal.tolerance = rule.*row.tolerance;
    }
    return refusal;
}

/// Everything that refuses the source, the comparison that the library ends at first.
template <const auto &Table, const auto &Names, class Rule, class Source>
std::vector<Refusal> refusalsBy(const Rule &rule, const Source &source)
{
    std::vector<Refusal> refusals;
    const int first = findRefusal<Table>(rule, source);
    for (auto row = static_cast<std::size_t>(first); first >= 0 && row < std::size(Table); ++row)
        if (!holds(Table[row], rule, source))
            refusals.push_back(refusalBy(Table[row], Names[row], rule, source));
    return refusals;
}

template <const auto &Table, const auto &Names, class Rule, class Source>
Visit visit(const Rule &rule, const Source &source)
{
    Visit visit{.record = &rule, .id = idOf(rule)};
    if (visit.id == kAnyCodec) {
        visit.verdict = Verdict::TakesAny;
    } else if (visit.id == source.codecId) {
        visit.refusals = refusalsBy<Table, Names>(rule, source);
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
        Visit one = visit<s_VideoComparisons, s_VideoRows>(rule, source);
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
    std::vector<Visit> visits = walk(table, [&](const AudioRule &rule) {
        return visit<s_AudioComparisons, s_AudioRows>(rule, source);
    });
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

std::set<std::string_view> refusalCodes()
{
    std::set<std::string_view> codes;
    for (const RowNames &row : s_VideoRows) codes.insert(row.code);
    for (const RowNames &row : s_AudioRows) codes.insert(row.code);
    return codes;
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

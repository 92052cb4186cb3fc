// The rules that a source passes, one by one, with what each of them says to it.
#pragma once

#include "base/rule_facts.h"

#include <string_view>
#include <vector>

namespace vornak::tool {

/// What refusals are called; the library has no names for its comparisons.
inline constexpr struct {
    std::string_view attribute; ///< that is compared first
    std::string_view code;
} s_RefusalCodes[] = {
    {"PLAY_EXCEPTION", "play-exception"},
    {"PROFILE", "profile"},
    {"LEVEL", "level"},
    {"MAXWIDTH", "max-size"},
    {"MINWIDTH", "min-size"},
    {"MAXBITRATE", "max-bitrate"},
    {"MINBITRATE", "min-bitrate"},
    {"MAXCHANNELS", "max-channels"},
    {"MINCHANNELS", "min-channels"},
    {"MAXFREQUENCY", "max-sample-rate"},
    {"MINFREQUENCY", "min-sample-rate"},
};

/// A comparison that refuses a source.
struct Refusal {
    std::string_view code = {};        ///< stable name, "max-channels"
    std::string_view field = {};       ///< the rule's field, "maxChannels"
    std::string_view secondField = {}; ///< of a picture size; else empty
    Bound bound = Bound::AtMost;
    Unit unit = Unit::Level;
    int limit = 0, actual = 0;
    int secondLimit = 0, secondActual = 0;
    int tolerance = 0;      ///< above 0: how close the two must lie
    int codecId = 0;        ///< for the names of profile bits
    bool estimated = false; ///< the file doesn't state what is compared
};

enum class Verdict {
    Takes,      ///< the walk ends here
    TakesAny,   ///< a wildcard: the walk ends here without a comparison
    Unmatched,  ///< taken without looking at the source
    Refuses,    ///< the codec is right, but not all of its properties
    OtherCodec, ///< of container entries: another container
};

/// A rule or entry that was visited.
struct Visit {
    int position = 0;
    const void *record = nullptr;
    int id = 0; ///< its codec or container
    Verdict verdict = Verdict::OtherCodec;
    std::vector<Refusal> refusals =
        {};                    ///< the first one ended the visit, the others would have, too
    int coveredExceptions = 0; ///< bits of the source that a video rule excludes, but not all
    bool isNearestMiss = false;

    bool takes() const { return verdict <= Verdict::Unmatched; }
};

/// The visited rules, in order, up to the one that takes the source. Where none does, the rule
/// of the source's codec that refuses it in the fewest ways is marked, the earlier on a tie.
std::vector<Visit> walkVideoRules(const VideoRule *table, const VideoSource &source,
                                  bool matchVideo);
std::vector<Visit> walkAudioRules(const AudioRule *table, const AudioSource &source);

/// The visited entries, up to the one that takes the container.
std::vector<Visit> walkEntries(const ContainerEntry *table, int formatId);

/// The one that takes the source, or null.
const Visit *takingVisit(const std::vector<Visit> &visits);

/// The one that is marked, or null: no rule has the source's codec, or one takes it.
const Visit *nearestMiss(const std::vector<Visit> &visits);

} // namespace vornak::tool

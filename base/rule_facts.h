// What is known of the properties of rules, a row for each, named by its attribute. The loader, the
// matching with its debug lines, the options' limits and the tool read these rows, each in an order
// of its own.
#pragma once

#include "base/rule_tables.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vornak {

/// What a property counts, and so how its attribute is read.
enum class Unit {
    ProfileBits,   ///< a set of codec profiles, written by name
    ExceptionBits, ///< a set of play exceptions, written by name
    Level,
    Channels,
    SampleRate, ///< Hz, moved to a standard rate
    BitRate,    ///< bits per second
    Pixels,
    Number, ///< for the host
    Flag,   ///< 1 alone has an effect
    Text,
};

/// What a property asks of a source. A limit of 0 or less asks nothing.
enum class Bound {
    None,
    NotWithin, ///< a source whose bits all lie in the rule's set is refused
    Within,    ///< every bit of the source must lie in the rule's set
    AtMost,
    AtLeast,
    Close, ///< how close to the sizes the source must come, where it is above 0
};

/// Where a record holds a property: in a number or a text.
template <class Rule>
struct Field {
    constexpr Field(int Rule::*itsNumber) : number(itsNumber) {}
    constexpr Field(char *Rule::*itsText) : text(itsText) {}

    int Rule::*number = nullptr;
    char *Rule::*text = nullptr;
};

template <class Rule, class Source>
struct Property {
    const char *attribute; ///< of the rule's element
    const char *name;      ///< of the field
    Unit unit;
    Field<Rule> field;
    Bound bound = Bound::None;
    int Source::*bounded = nullptr;

    [[gnu::always_inline]] constexpr int in(const Rule &rule) const { return rule.*field.number; }
    [[gnu::always_inline]] constexpr int in(const Source &source) const { return source.*bounded; }
};

/// What a rule and a source are compared by. Picture sizes are compared two at once, and only
/// where the rule limits both.
template <class Rule, class Source>
struct Comparison {
    const Property<Rule, Source> *first;
    const Property<Rule, Source> *second = nullptr;
    const Property<Rule, Source> *closeness = nullptr;
};

template <class Row, std::size_t Size>
constexpr const Row *propertyOf(const std::array<Row, Size> &properties, std::string_view attribute)
{
    for (const Row &property : properties)
        if (property.attribute == attribute) return &property;
    throw "no property has this attribute";
}

/// The properties in the order of these attributes, which must name each of them once.
template <class Row, std::size_t Size>
consteval std::array<const Row *, Size> inOrder(const std::array<Row, Size> &properties,
                                                const std::array<std::string_view, Size> &order)
{
    std::array<const Row *, Size> rows{};
    for (std::size_t i = 0; i < Size; ++i) {
        rows[i] = propertyOf(properties, order[i]);
        if (std::ranges::count(order, order[i]) > 1) throw "a property that stands twice";
    }
    return rows;
}

/// The comparisons in the order of these attributes, which must name every bound.
template <class Rule, class Source, std::size_t Size, std::size_t Count>
consteval auto compared(const std::array<Property<Rule, Source>, Size> &properties,
                        const std::string_view (&order)[Count][3])
{
    std::array<Comparison<Rule, Source>, Count> rows{};
    for (std::size_t i = 0; i < Count; ++i) {
        rows[i].first = propertyOf(properties, order[i][0]);
        if (!order[i][1].empty()) rows[i].second = propertyOf(properties, order[i][1]);
        if (!order[i][2].empty()) rows[i].closeness = propertyOf(properties, order[i][2]);
    }
    for (const auto &property : properties) {
        const auto names = [&](const auto &row) {
            return std::ranges::count(row, std::string_view(property.attribute)) > 0;
        };
        if (property.bound != Bound::None && std::ranges::none_of(order, names))
            throw "a bound that nothing is compared with";
    }
    return rows;
}

/// The comparison that begins with an attribute.
consteval const auto &comparisonOf(const auto &comparisons, std::string_view attribute)
{
    for (const auto &row : comparisons)
        if (row.first->attribute == attribute) return row;
    throw "no comparison begins with this attribute";
}

// ---- Audio rules -------------------------------------------------------------------------

/// The properties of an audio stream, in the order in which hosts pass them.
struct AudioSource {
    int codecId, profileId, level, channels, bitrate, sampleRate;
};

using AudioProperty = Property<AudioRule, AudioSource>;
using AudioComparison = Comparison<AudioRule, AudioSource>;

inline constexpr auto s_AudioProperties = [] {
    using enum Unit;
    using enum Bound;
    using R = AudioRule;
    using S = AudioSource;
    return std::to_array<AudioProperty>({
        // attribute, field's name, unit, field, bound, what it bounds
        {"PROFILE", "aProfileId", ProfileBits, &R::aProfileId, Within, &S::profileId},
        {"LEVEL", "aLevel", Level, &R::aLevel, AtMost, &S::level},
        {"MAXCHANNELS", "maxChannels", Channels, &R::maxChannels, AtMost, &S::channels},
        {"MINCHANNELS", "minChannels", Channels, &R::minChannels, AtLeast, &S::channels},
        {"MAXFREQUENCY", "maxSampleRate", SampleRate, &R::maxSampleRate, AtMost, &S::sampleRate},
        {"MINFREQUENCY", "minSampleRate", SampleRate, &R::minSampleRate, AtLeast, &S::sampleRate},
        {"MAXBITRATE", "maxBitrate", BitRate, &R::maxBitrate, AtMost, &S::bitrate},
        {"MINBITRATE", "minBitrate", BitRate, &R::minBitrate, AtLeast, &S::bitrate},
        {"OPTION", "option", Text, &R::option},
        {"NOTRANSCODE", "noTranscode", Flag, &R::noTranscode},
    });
}();

// as the loader reads them
inline constexpr auto s_AudioReading = inOrder(
    s_AudioProperties, {"PROFILE", "LEVEL", "NOTRANSCODE", "MAXCHANNELS", "MINCHANNELS",
                        "MAXFREQUENCY", "MINFREQUENCY", "MAXBITRATE", "MINBITRATE", "OPTION"});

// as they are compared: the first that refuses a source ends the rule
inline constexpr auto s_AudioComparisons = compared(s_AudioProperties, {{"PROFILE"},
                                                                        {"LEVEL"},
                                                                        {"MAXCHANNELS"},
                                                                        {"MINCHANNELS"},
                                                                        {"MAXBITRATE"},
                                                                        {"MINBITRATE"},
                                                                        {"MAXFREQUENCY"},
                                                                        {"MINFREQUENCY"}});

// as they are shown
inline constexpr auto s_AudioShown = inOrder(
    s_AudioProperties, {"PROFILE", "LEVEL", "MAXCHANNELS", "MINCHANNELS", "MAXFREQUENCY",
                        "MINFREQUENCY", "MAXBITRATE", "MINBITRATE", "OPTION", "NOTRANSCODE"});

// ---- Video rules -------------------------------------------------------------------------

/// The properties of a video stream, in the order in which hosts pass them.
struct VideoSource {
    int codecId, profileId, level, width, height, bitrate;
    int codecFlag; ///< play-exception bits
};

using VideoProperty = Property<VideoRule, VideoSource>;
using VideoComparison = Comparison<VideoRule, VideoSource>;

inline constexpr auto s_VideoProperties = [] {
    using enum Unit;
    using enum Bound;
    using R = VideoRule;
    using S = VideoSource;
    return std::to_array<VideoProperty>({
        {"PROFILE", "vProfileId", ProfileBits, &R::vProfileId, Within, &S::profileId},
        {"LEVEL", "vLevel", Level, &R::vLevel, AtMost, &S::level},
        {"MAXWIDTH", "maxWidth", Pixels, &R::maxWidth, AtMost, &S::width},
        {"MAXHEIGHT", "maxHeight", Pixels, &R::maxHeight, AtMost, &S::height},
        {"MINWIDTH", "minWidth", Pixels, &R::minWidth, AtLeast, &S::width},
        {"MINHEIGHT", "minHeight", Pixels, &R::minHeight, AtLeast, &S::height},
        {"TOLERANCE", "tolerance", Pixels, &R::tolerance, Close},
        {"MAXBITRATE", "maxBitrate", BitRate, &R::maxBitrate, AtMost, &S::bitrate},
        {"MINBITRATE", "minBitrate", BitRate, &R::minBitrate, AtLeast, &S::bitrate},
        {"PLAY_EXCEPTION", "playException", ExceptionBits, &R::playException, NotWithin,
         &S::codecFlag},
        {"OPTION", "option", Text, &R::option},
        {"NOTRANSCODE", "noTranscode", Flag, &R::noTranscode},
        {"VATRANSCODE", "vaTranscode", Number, &R::vaTranscode},
        {"FRAME", "frame", Number, &R::frame},
    });
}();

inline constexpr auto s_VideoReading =
    inOrder(s_VideoProperties, {"PROFILE", "LEVEL", "NOTRANSCODE", "MAXWIDTH", "MINWIDTH",
                                "MAXHEIGHT", "MINHEIGHT", "MAXBITRATE", "MINBITRATE", "OPTION",
                                "VATRANSCODE", "FRAME", "TOLERANCE", "PLAY_EXCEPTION"});

inline constexpr auto s_VideoComparisons =
    compared(s_VideoProperties, {{"PLAY_EXCEPTION"},
                                 {"PROFILE"},
                                 {"LEVEL"},
                                 {"MAXWIDTH", "MAXHEIGHT", "TOLERANCE"},
                                 {"MINWIDTH", "MINHEIGHT", "TOLERANCE"},
                                 {"MAXBITRATE"},
                                 {"MINBITRATE"}});

inline constexpr auto s_VideoShown =
    inOrder(s_VideoProperties, {"PROFILE", "LEVEL", "MAXWIDTH", "MAXHEIGHT", "MINWIDTH",
                                "MINHEIGHT", "TOLERANCE", "MAXBITRATE", "MINBITRATE",
                                "PLAY_EXCEPTION", "OPTION", "VATRANSCODE", "FRAME", "NOTRANSCODE"});

// ---- Container entries -------------------------------------------------------------------

/// A source's container is all id.
struct NoSource {};

using ContainerProperty = Property<ContainerEntry, NoSource>;

inline constexpr auto s_ContainerProperties = std::to_array<ContainerProperty>({
    {"OPTION", "option", Unit::Text, &ContainerEntry::option},
    {"NOTRANSCODE", "noTranscode", Unit::Flag, &ContainerEntry::noTranscode},
    {"MIME", "mime", Unit::Text, &ContainerEntry::mime},
    {"PN", "pn", Unit::Text, &ContainerEntry::pn},
    {"NONSEEKABLE", "nonSeekable", Unit::Flag, &ContainerEntry::nonSeekable},
});

inline constexpr auto s_ContainerReading =
    inOrder(s_ContainerProperties, {"NOTRANSCODE", "PN", "MIME", "NONSEEKABLE", "OPTION"});

inline constexpr auto s_ContainerShown =
    inOrder(s_ContainerProperties, {"MIME", "PN", "OPTION", "NONSEEKABLE", "NOTRANSCODE"});

} // namespace vornak

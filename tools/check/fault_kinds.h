// The kinds of findings: what each is called, how bad it is, and an example that a test runs.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vornak::tool {

enum class Severity { Error, Warning, Note };

const char *severityName(Severity severity);

enum class Fault {
    // the file as text
    ByteOrderMark,
    EncodingMismatch,
    BareAmpersand,
    NotWellFormed,
    DuplicateAttribute,
    LineBreak,
    UselessIgnore,
    // what the loader leaves out or reads as something else
    UnknownElement,
    MisplacedElement,
    RepeatedSection,
    StrayText,
    UnknownAttribute,
    MissingName,
    UnknownCodec,
    NarrowName,
    UnknownContainer,
    UnknownSubtype,
    UnknownProfile,
    UnknownException,
    NameListTooLong,
    CodecWithoutContainers,
    VideoWithoutAudio,
    SectionWithoutRules,
    DeviceWithoutSections,
    KindUnserved,
    TooManyRules,
    LeadingBlank,
    NumberStops,
    SuffixInside,
    SuffixOnDecimal,
    NumberOverflow,
    FrequencySnapped,
    EmptyValue,
    // limits that do nothing, or too much
    NegativeLimit,
    FlagValue,
    BitRateScale,
    HalfSizePair,
    ToleranceWithoutSizes,
    WildcardLimits,
    MinAboveMax,
    LevelScale,
    LevelsRunBackwards,
    ForeignProfile,
    CodecKind,
    UnreachableRule,
    NoEffect,
    // what is transcoded into
    TargetForbidden,
    TargetWildcard,
    TargetWithoutOption,
    ContainerWithoutOption,
    UnknownEncoder,
    UnknownMuxer,
    UnknownOption,
    StrayWord,
    OptionCodec,
    OptionContainer,
    MuxerCodec,
    OptionLimit,
    OptionPixels,
    OptionPcm,
    // what is announced
    MimeMissing,
    UnknownMime,
    ForeignMime,
    PnMissing,
    UnknownPn,
    ForeignPn,
    End
};

struct FaultKind {
    Fault fault;
    Severity severity;
    bool isRefusedBySchema; ///< share/vornak/profile.rng
    const char *id;         ///< stable
    const char *cause, *mend;
    const char *bad, *good; ///< examples, to be made whole by exampleProfile()
};

/// All kinds, in the order of their enumerators.
std::span<const FaultKind> faultKinds();

const FaultKind &kindOf(Fault fault);

/// A part of a profile as a whole one: the elements around it are added, and each "…" in it stands
/// for sound elements.
std::string exampleProfile(std::string_view part);

/// The kinds with their examples, as a page of Markdown.
std::string faultPage();

} // namespace vornak::tool

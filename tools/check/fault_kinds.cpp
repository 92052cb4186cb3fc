#include "tools/check/fault_kinds.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr auto s_Kinds = std::to_array<FaultKind>({
    // fault, severity, whether the schema refuses it, id, cause, mend, example, the same mended
    {Fault::ByteOrderMark, Severity::Warning, false, "byte-order-mark",
     "The file begins with a byte-order mark, which not all readers of XML pass over.",
     "Save it as UTF-8 without a mark.",
     "\xEF\xBB\xBF"
     "<DEVICE NAME=\"T\">…</DEVICE>",
     R"(<DEVICE NAME="T">…</DEVICE>)"},
    {Fault::EncodingMismatch, Severity::Error, false, "encoding-mismatch",
     "The text isn't in the encoding that the file declares, or in UTF-8 where it declares none.",
     "Save it as UTF-8, and declare that or nothing.",
     R"(<?xml version="1.0" encoding="UTF-16"?><DEVICE NAME="T">…</DEVICE>)",
     R"(<?xml version="1.0" encoding="UTF-8"?><DEVICE NAME="T">…</DEVICE>)"},
    {Fault::BareAmpersand, Severity::Warning, false, "bare-ampersand",
     "A `&` in a value, for which XML has `&amp;`. It is read as it is, but other readers refuse the file.",
     "Write `&amp;`.", R"(<DEVICE NAME="Tom & Co">…</DEVICE>)",
     R"(<DEVICE NAME="Tom &amp; Co">…</DEVICE>)"},
    {Fault::NotWellFormed, Severity::Warning, false, "not-well-formed",
     "Two hyphens in a comment, or something before `<?xml`. It is read, but other readers refuse the file.",
     "Write one hyphen; begin the file with `<?xml`.",
     R"(<DEVICE NAME="T"><!-- 2 -- not 6 -->…</DEVICE>)",
     R"(<DEVICE NAME="T"><!-- 2 - not 6 -->…</DEVICE>)"},
    {Fault::DuplicateAttribute, Severity::Error, false, "duplicate-attribute",
     "An attribute written twice: the first counts, and other readers refuse the file.",
     "Remove one of the two.",
     R"(<ACODEC NAME="aac" MAXCHANNELS="2" MAXCHANNELS="6" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXCHANNELS="2" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::LineBreak, Severity::Warning, false, "line-break",
     "A line break in a value, which is handed on as it is: it may end the transcoder's command.",
     "Write the value on one line.",
     "<ACODEC NAME=\"aac\" OPTION=\"-c:a aac\n-b:a 192k\">…</ACODEC>",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac -b:a 192k">…</ACODEC>)"},
    {Fault::UselessIgnore, Severity::Warning, false, "useless-ignore",
     "A comment that silences nothing: no such finding is in the element after it, or there is none of that name.",
     "Remove the comment.",
     R"(<!-- vornak: ignore number-stops --><ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)",
     R"(<!-- vornak: ignore number-stops --><ACODEC NAME="aac" MAXCHANNELS="two" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::UnknownElement, Severity::Error, true, "unknown-element",
     "An element that profiles don't have. It is ignored, with all that it holds.",
     "Write one that they have, or remove it.", R"(<MUSIC><AUDIO NAME="mp3"/>…</MUSIC>)",
     R"(<MUSIC>…</MUSIC>)"},
    {Fault::MisplacedElement, Severity::Error, true, "misplaced-element",
     "An element in a place where it is not looked for.", "Move it to where it belongs.",
     R"(<MUSIC>…<FORMAT NAME="mp3"/></MUSIC>)", R"(<MUSIC>…</MUSIC>)"},
    {Fault::RepeatedSection, Severity::Error, true, "repeated-section",
     "A second `DEVICE`, `MUSIC` or `VIDEO`, which is ignored.",
     "Move its rules into the first one.",
     R"(<DEVICE NAME="T"><MUSIC>…</MUSIC><MUSIC>…</MUSIC></DEVICE>)",
     R"(<DEVICE NAME="T"><MUSIC>…</MUSIC></DEVICE>)"},
    {Fault::StrayText, Severity::Error, true, "stray-text",
     "Text between elements, or beside `DEVICE`, which is ignored.",
     "Write values as attributes, and what is for people as comments.",
     R"(<MUSIC>stereo only …</MUSIC>)", R"(<MUSIC><!-- stereo only -->…</MUSIC>)"},
    {Fault::UnknownAttribute, Severity::Error, true, "unknown-attribute",
     "An attribute that this element doesn't have, which is ignored.",
     "Write the one that is meant, or remove it.",
     R"(<VCODEC NAME="h264" MAXLEVEL="41" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" LEVEL="41" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::MissingName, Severity::Error, true, "missing-name",
     "`NAME` is absent or empty: the element is left out.", "Name what it is for.",
     R"(<ACODEC OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::UnknownCodec, Severity::Error, false, "unknown-codec",
     "`NAME` is no codec that is known: the rule is left out.", "Write the name that it has here.",
     R"(<ACODEC NAME="aac-lc" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" PROFILE="lc" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::NarrowName, Severity::Note, false, "narrow-name",
     "`pcm`, `lpcm`, `dsd` or `wma`, which stand for one codec of a family.",
     "Write the codec's own name, and a rule for each other.",
     R"(<ACODEC NAME="wma" OPTION="-c:a wmav2">…</ACODEC>)",
     R"(<ACODEC NAME="wmav2" OPTION="-c:a wmav2">…</ACODEC>)"},
    {Fault::UnknownContainer, Severity::Error, false, "unknown-container",
     "`NAME` is no container that is known: the `FORMAT` is left out.",
     "Write the name that it has here.", R"(<FORMAT NAME="mp5" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" OPTION="-f mp4"/>)"},
    {Fault::UnknownSubtype, Severity::Error, false, "unknown-subtype",
     "The container has no such subtype: the `FORMAT` is left out.",
     "Write one that it has, or none.", R"(<FORMAT NAME="mp4" SUBTYPE="isoo" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" SUBTYPE="isom" OPTION="-f mp4"/>)"},
    {Fault::UnknownProfile, Severity::Error, false, "unknown-profile",
     "A name in `PROFILE` that no codec has: it is left out of the list.",
     "Write a profile of the codec; `|` separates them.",
     R"(<ACODEC NAME="aac" PROFILE="lc, he" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" PROFILE="lc|he" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::UnknownException, Severity::Error, false, "unknown-exception",
     "A name in `PLAY_EXCEPTION` that isn't known: it is left out of the list.",
     "Write one that is known; `|` separates them.",
     R"(<VCODEC NAME="h264" PLAY_EXCEPTION="interlacing" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" PLAY_EXCEPTION="interlaced" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::NameListTooLong, Severity::Error, false, "name-list-too-long",
     "A list of more than 1023 characters, blanks not counted: what lies beyond is ignored.",
     "Shorten it.", R"(<ACODEC NAME="aac" PROFILE="{400 lc|}" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" PROFILE="lc" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::CodecWithoutContainers, Severity::Error, true, "codec-without-containers",
     "An `ACODEC` without a `FORMAT` (it is left out), or without a valid one.",
     "Add the containers that the player takes it from.",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac"/>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::VideoWithoutAudio, Severity::Error, true, "video-without-audio",
     "A `VCODEC` without an `ACODEC` (it is left out), or without a valid one.",
     "Add the sound that may come with this picture.",
     R"(<VCODEC NAME="h264" OPTION="-c:v libx264"/>)",
     R"(<VCODEC NAME="h264" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::SectionWithoutRules, Severity::Warning, true, "section-without-rules",
     "A `MUSIC` or `VIDEO` that holds no rule, or no valid one.",
     "Add a rule, or remove the section.", R"(<MUSIC/>)", R"(<MUSIC>…</MUSIC>)"},
    {Fault::DeviceWithoutSections, Severity::Warning, true, "device-without-sections",
     "A `DEVICE` with neither `MUSIC` nor `VIDEO`: it serves nothing.", "Add a section with rules.",
     R"(<DEVICE NAME="T"/>)", R"(<DEVICE NAME="T">…</DEVICE>)"},
    {Fault::KindUnserved, Severity::Note, false, "kind-unserved",
     "A `DEVICE` with only one of `MUSIC` and `VIDEO`: of files of the other kind nothing is decided.",
     "Add the other, unless the player takes no such files.",
     R"(<DEVICE NAME="T"><MUSIC>…</MUSIC></DEVICE>)",
     R"(<DEVICE NAME="T"><MUSIC>…</MUSIC><VIDEO>…</VIDEO></DEVICE>)"},
    {Fault::TooManyRules, Severity::Error, false, "too-many-rules",
     "Rules beyond the 256 of a list that can be chosen.", "Merge rules, or remove some.",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">{257 <FORMAT NAME="mp4" OPTION="-f mp4"/>}</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::LeadingBlank, Severity::Error, true, "leading-blank",
     "A number that begins with a blank, where none may: it is 0.", "Remove the blank.",
     R"(<ACODEC NAME="aac" MAXBITRATE=" 320K" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXBITRATE="320K" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::NumberStops, Severity::Error, true, "number-stops",
     "A number that ends early, at a character that doesn't belong.", "Write a whole number.",
     R"(<ACODEC NAME="aac" MAXCHANNELS="5.1" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXCHANNELS="6" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::SuffixInside, Severity::Error, true, "suffix-inside",
     "A `K` or `M` with digits after it: it multiplies what is before it.", "Write the number out.",
     R"(<ACODEC NAME="aac" MAXBITRATE="1M5" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXBITRATE="1500K" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::SuffixOnDecimal, Severity::Error, true, "suffix-on-decimal",
     "A `K` or `M` where none is read.", "Write the number out.",
     R"(<ACODEC NAME="aac" MAXCHANNELS="2K" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXCHANNELS="2" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::NumberOverflow, Severity::Error, false, "number-overflow",
     "A number that doesn't fit into 32 bits.", "Write a smaller one, or none.",
     R"(<VCODEC NAME="h264" MAXBITRATE="9999M" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" MAXBITRATE="100M" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::FrequencySnapped, Severity::Warning, false, "frequency-snapped",
     "A sample rate that is moved to a standard one.", "Write a standard rate in full.",
     R"(<ACODEC NAME="aac" MAXFREQUENCY="44000" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXFREQUENCY="44100" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::EmptyValue, Severity::Warning, true, "empty-value", "An attribute without a value.",
     "Give it a value, or remove it.",
     R"(<ACODEC NAME="aac" PROFILE="" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::NegativeLimit, Severity::Warning, true, "negative-limit",
     "A limit below 0, which limits nothing.", "Remove it.",
     R"(<ACODEC NAME="aac" MAXCHANNELS="-1" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::FlagValue, Severity::Warning, true, "flag-value",
     "`NOTRANSCODE` or `NONSEEKABLE` that is neither 0 nor 1.", "Write 1 or 0.",
     R"(<FORMAT NAME="mp4" NONSEEKABLE="2" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" NONSEEKABLE="1" OPTION="-f mp4"/>)"},
    {Fault::BitRateScale, Severity::Warning, false, "bit-rate-scale",
     "A bit rate below any that streams of the codec have. They are counted in bits per second.",
     "Write `K` behind kilobits, `M` behind megabits.",
     R"(<ACODEC NAME="aac" MAXBITRATE="320" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXBITRATE="320K" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::HalfSizePair, Severity::Error, false, "half-size-pair",
     "One size without the other, which limits nothing.", "Add the other.",
     R"(<VCODEC NAME="h264" MAXWIDTH="1920" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" MAXWIDTH="1920" MAXHEIGHT="1080" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::ToleranceWithoutSizes, Severity::Warning, false, "tolerance-without-sizes",
     "`TOLERANCE` without a pair of sizes.", "Add the sizes, or remove it.",
     R"(<VCODEC NAME="h264" TOLERANCE="8" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" TOLERANCE="8" MAXWIDTH="720" MAXHEIGHT="576" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::WildcardLimits, Severity::Warning, false, "wildcard-limits",
     "Limits of a rule for `any`, which looks at none.", "Name the codec, or remove them.",
     R"(<MUSIC>…<ACODEC NAME="any" MAXCHANNELS="2">…</ACODEC></MUSIC>)",
     R"(<MUSIC>…<ACODEC NAME="any">…</ACODEC></MUSIC>)"},
    {Fault::MinAboveMax, Severity::Error, false, "min-above-max",
     "Two limits that no source can keep together.", "Exchange the two.",
     R"(<ACODEC NAME="aac" MINCHANNELS="6" MAXCHANNELS="2" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MINCHANNELS="2" MAXCHANNELS="6" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::LevelScale, Severity::Warning, false, "level-scale",
     "A level that H.264 or HEVC doesn't have, such as 4.1 in place of 41.",
     "Write the number in the stream: ten times the level for H.264, thirty times for HEVC.",
     R"(<VCODEC NAME="h264" LEVEL="4" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" LEVEL="40" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::LevelsRunBackwards, Severity::Warning, false, "levels-run-backwards",
     "`LEVEL` for MPEG-2 video, whose higher levels have the lower numbers.",
     "Limit the size in its place.",
     R"(<VCODEC NAME="mpeg2video" LEVEL="8" OPTION="-c:v mpeg2video">…</VCODEC>)",
     R"(<VCODEC NAME="mpeg2video" MAXWIDTH="720" MAXHEIGHT="576" OPTION="-c:v mpeg2video">…</VCODEC>)"},
    {Fault::ForeignProfile, Severity::Warning, false, "foreign-profile",
     "A profile that this codec doesn't have.", "Write one that it has.",
     R"(<ACODEC NAME="aac" PROFILE="lc|high" OPTION="-c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" PROFILE="lc|he" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::CodecKind, Severity::Error, false, "codec-kind",
     "An audio codec in a `VCODEC`, or a video codec in an `ACODEC`: no source fits.",
     "Make it the other element.", R"(<MUSIC>…<ACODEC NAME="h264">…</ACODEC></MUSIC>)",
     R"(<MUSIC>…<ACODEC NAME="mp3">…</ACODEC></MUSIC>)"},
    {Fault::UnreachableRule, Severity::Warning, false, "unreachable-rule",
     "A rule for sources that an earlier one takes all.", "Remove it, or move it up.",
     R"(<MUSIC>…<ACODEC NAME="aac" MAXCHANNELS="2">…</ACODEC></MUSIC>)",
     R"(<MUSIC><ACODEC NAME="aac" MAXCHANNELS="2" OPTION="-c:a aac">…</ACODEC><ACODEC NAME="aac">…</ACODEC></MUSIC>)"},
    {Fault::NoEffect, Severity::Warning, false, "no-effect",
     "An attribute that nothing looks at in this place.",
     "Remove it, or move it to where it counts.",
     R"(<MUSIC>…<ACODEC NAME="mp3" OPTION="-c:a libmp3lame">…</ACODEC></MUSIC>)",
     R"(<MUSIC>…<ACODEC NAME="mp3">…</ACODEC></MUSIC>)"},
    {Fault::TargetForbidden, Severity::Warning, false, "target-forbidden",
     "`NOTRANSCODE` where it forbids every transcode.",
     "Remove it, unless files that don't fit are to be refused.",
     R"(<VCODEC NAME="h264" NOTRANSCODE="1" OPTION="-c:v libx264">…</VCODEC>)",
     R"(<VCODEC NAME="h264" OPTION="-c:v libx264">…</VCODEC>)"},
    {Fault::TargetWildcard, Severity::Error, false, "target-wildcard",
     "A wildcard in the place of what is transcoded to.",
     "Put a rule with a codec or container before it.", R"(<ACODEC NAME="any">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::TargetWithoutOption, Severity::Error, false, "target-without-option",
     "The first `VCODEC`, or the first `ACODEC` of `MUSIC` or of a `VCODEC`, without `OPTION`, or with one that names no encoder: it says what is transcoded into.",
     "Name an encoder.", R"(<ACODEC NAME="aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::ContainerWithoutOption, Severity::Error, false, "container-without-option",
     "A first container whose `OPTION` names no `-f`.", "Name the format that is to be written.",
     R"(<FORMAT NAME="mp4"/>)", R"(<FORMAT NAME="mp4" OPTION="-f mp4"/>)"},
    {Fault::UnknownEncoder, Severity::Warning, false, "unknown-encoder",
     "An encoder that the libavcodec of this machine doesn't know. The transcoder's may be another.",
     "Write the name that `ffmpeg -encoders` shows.",
     R"(<ACODEC NAME="mp3" OPTION="-c:a libmp3lam">…</ACODEC>)",
     R"(<ACODEC NAME="mp3" OPTION="-c:a libmp3lame">…</ACODEC>)"},
    {Fault::UnknownMuxer, Severity::Warning, false, "unknown-muxer",
     "A format that the libavformat of this machine can't write. The transcoder's may be another.",
     "Write the name that `ffmpeg -muxers` shows.", R"(<FORMAT NAME="matroska" OPTION="-f mkv"/>)",
     R"(<FORMAT NAME="matroska" OPTION="-f matroska"/>)"},
    {Fault::UnknownOption, Severity::Warning, false, "unknown-option",
     "An option that neither ffmpeg nor the libavcodec and libavformat of this machine know.",
     "Write the name that `ffmpeg -h full` shows.",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac -bite:a 192k">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac -b:a 192k">…</ACODEC>)"},
    {Fault::StrayWord, Severity::Error, false, "stray-word",
     "A word in `OPTION` that belongs to no option, or `-i`: the transcoder takes it for one more file.",
     "Write the options alone.",
     R"(<ACODEC NAME="aac" OPTION="ffmpeg -i film.mkv -c:a aac">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::OptionCodec, Severity::Error, false, "option-codec",
     "An encoder in `OPTION` that makes another codec than `NAME`.",
     "Name an encoder of this codec.", R"(<ACODEC NAME="aac" OPTION="-c:a libmp3lame">…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)"},
    {Fault::OptionContainer, Severity::Error, false, "option-container",
     "A `-f` in `OPTION` that makes another container than `NAME` and `SUBTYPE`.",
     "Name the format of this container.", R"(<FORMAT NAME="mp4" OPTION="-f mpegts"/>)",
     R"(<FORMAT NAME="mp4" OPTION="-f mp4"/>)"},
    {Fault::MuxerCodec, Severity::Warning, false, "muxer-codec",
     "A container of what is transcoded to that, by the libavformat of this machine, can't hold it.",
     "Put another container first.",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="webm" OPTION="-f webm"/>…</ACODEC>)",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="mp4" OPTION="-f mp4"/>…</ACODEC>)"},
    {Fault::OptionLimit, Severity::Error, false, "option-limit",
     "A first rule whose output its own limits refuse, and no later rule takes: it would be transcoded again.",
     "Change the limit, or what is made.",
     R"(<ACODEC NAME="aac" MAXCHANNELS="2" OPTION="-c:a aac -ac 6">…</ACODEC>)",
     R"(<ACODEC NAME="aac" MAXCHANNELS="2" OPTION="-c:a aac -ac 2">…</ACODEC>)"},
    {Fault::OptionPixels, Severity::Warning, false, "option-pixels",
     "A `-profile:v` without a pixel format that it can hold: the encoder ends at sources that have another.",
     "Add `-pix_fmt`.", R"(<VCODEC NAME="h264" OPTION="-c:v libx264 -profile:v high">…</VCODEC>)",
     R"(<VCODEC NAME="h264" OPTION="-c:v libx264 -profile:v high -pix_fmt yuv420p">…</VCODEC>)"},
    {Fault::OptionPcm, Severity::Warning, false, "option-pcm",
     "Uncompressed music without a sample rate or channels: its size can't be told before it is made.",
     "Add `-ar` and `-ac`.", R"(<ACODEC NAME="pcm_s16le" OPTION="-c:a pcm_s16le">…</ACODEC>)",
     R"(<ACODEC NAME="pcm_s16le" OPTION="-c:a pcm_s16le -ar 44100 -ac 2">…</ACODEC>)"},
    {Fault::MimeMissing, Severity::Note, false, "mime-missing", "A container without `MIME`.",
     "Add the type that the player states.", R"(<FORMAT NAME="mp4" PN="AAC_ISO" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" MIME="audio/mp4" PN="AAC_ISO" OPTION="-f mp4"/>)"},
    {Fault::UnknownMime, Severity::Warning, false, "unknown-mime",
     "A MIME type that media don't have.", "Write the one that the player states.",
     R"(<FORMAT NAME="mp4" MIME="audio/mp44" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" MIME="audio/mp4" OPTION="-f mp4"/>)"},
    {Fault::ForeignMime, Severity::Warning, false, "foreign-mime",
     "A MIME type of another container, of music for a video, or of videos for music.",
     "Write the one that the player states.",
     R"(<FORMAT NAME="mp4" MIME="audio/flac" PN="AAC_ISO" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" MIME="audio/mp4" PN="AAC_ISO" OPTION="-f mp4"/>)"},
    {Fault::PnMissing, Severity::Note, false, "pn-missing",
     "A container without `PN`, where DLNA has a name for it with this picture and sound.",
     "Add the name that the player states.",
     R"(<FORMAT NAME="mp4" MIME="audio/mp4" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" MIME="audio/mp4" PN="AAC_ISO" OPTION="-f mp4"/>)"},
    {Fault::UnknownPn, Severity::Warning, false, "unknown-pn",
     "A name that DLNA has no profile of.", "Write one that the player states, or none.",
     R"(<FORMAT NAME="mp4" PN="AAC_ISOO" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" PN="AAC_ISO" OPTION="-f mp4"/>)"},
    {Fault::ForeignPn, Severity::Warning, false, "foreign-pn",
     "A DLNA profile of another picture (its codec, profile or size), sound or container.",
     "Write one that fits, or none.", R"(<FORMAT NAME="mp4" PN="MP3" OPTION="-f mp4"/>)",
     R"(<FORMAT NAME="mp4" PN="AAC_ISO" OPTION="-f mp4"/>)"},
});

consteval bool haveKinds()
{
    std::size_t row = 0;
    for (const FaultKind &kind : s_Kinds)
        if (kind.fault != static_cast<Fault>(row++)) return false;
    return row == static_cast<std::size_t>(Fault::End);
}
static_assert(haveKinds(), "each fault has its row, in order");

/// What stands in an element, and around it.
constexpr struct {
    std::string_view start, before, content, after;
} s_Elements[] = {
    {"<FORMAT", R"(<ACODEC NAME="aac" OPTION="-c:a aac">)", "", "</ACODEC>"},
    {"<ACODEC", "<MUSIC>",
     R"(<FORMAT NAME="matroska" MIME="audio/x-matroska" OPTION="-f matroska"/>)", "</MUSIC>"},
    {"<VCODEC", "<VIDEO>",
     R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="matroska" MIME="video/x-matroska" )"
     R"(OPTION="-f matroska"/></ACODEC>)",
     "</VIDEO>"},
    {"<MUSIC", R"(<DEVICE NAME="T">)", R"(<ACODEC NAME="aac" OPTION="-c:a aac">…</ACODEC>)",
     "</DEVICE>"},
    {"<VIDEO", R"(<DEVICE NAME="T">)", R"(<VCODEC NAME="h264" OPTION="-c:v libx264">…</VCODEC>)",
     "</DEVICE>"},
    {"<DEVICE", "", "<MUSIC>…</MUSIC><VIDEO>…</VIDEO>", ""},
};

/// "{3 ab}" as "ababab".
void repeat(std::string &text)
{
    const std::size_t open = text.find('{');
    if (open == std::string::npos) return;
    const std::size_t blank = text.find(' ', open), close = text.find('}', open);
    int times = 0;
    std::from_chars(&text[open + 1], &text[blank], times);
    const std::string piece = text.substr(blank + 1, close - blank - 1);
    std::string all;
    for (int i = 0; i < times; ++i) all += piece;
    text.replace(open, close + 1 - open, all);
}

void replaceAll(std::string &text, std::string_view what, std::string_view with)
{
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

/// What stands for the "…" at a place: what its element holds.
std::string_view contentAt(std::string_view text, std::size_t place)
{
    std::size_t last = 0;
    std::string_view content;
    for (const auto &element : s_Elements) {
        const std::size_t at = text.rfind(element.start, place);
        if (at == std::string_view::npos || at < last) continue;
        last = at;
        content = element.content;
    }
    return content;
}

} // namespace

const char *severityName(Severity severity)
{
    constexpr const char *s_Names[] = {"error", "warning", "note"};
    return s_Names[static_cast<std::size_t>(severity)];
}

std::span<const FaultKind> faultKinds()
{
    return s_Kinds;
}

const FaultKind &kindOf(Fault fault)
{
    return s_Kinds[static_cast<std::size_t>(fault)];
}

std::string exampleProfile(std::string_view part)
{
    constexpr std::string_view kRest = "…";
    std::string text(part);
    repeat(text);
    for (const auto &element : s_Elements) {
        const std::size_t at = text.find('<') == text.find("<!--") ? text.find("-->") : 0;
        const std::size_t first = std::min(text.find('<', at), text.size());
        if (std::string_view(text).substr(first).starts_with(element.start))
            text = fmt::format("{}{}{}", element.before, text, element.after);
    }
    for (std::size_t at = text.find(kRest); at != std::string::npos; at = text.find(kRest, at))
        text.replace(at, kRest.size(), contentAt(text, at));
    return text;
}

std::string faultPage()
{
    std::string page;
    for (const FaultKind &kind : s_Kinds) {
        const auto example = [&](const char *text) {
            std::string shown = text; // a mark and a line break show as in C
            replaceAll(shown, "\xEF\xBB\xBF", "\\xEF\\xBB\\xBF");
            replaceAll(shown, "\n", "\\n");
            return shown;
        };
        page += fmt::format("## {}\n\n**{}**{}: {} *{}*\n\n    {}\n    {}\n\n", kind.id,
                            severityName(kind.severity),
                            kind.isRefusedBySchema ? ", the schema's as well" : "", kind.cause,
                            kind.mend, example(kind.bad), example(kind.good));
    }
    page.pop_back();
    return page;
}

} // namespace vornak::tool

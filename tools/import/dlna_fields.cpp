#include "tools/import/dlna_fields.h"

#include "base/media_ids.h"
#include "platform/registry_names.h"
#include "tools/import/said_limits.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <span>

namespace vornak::tool {
namespace {

using Field = DlnaField;

/// A property that a stream of this kind has; with a field for each that is named.
struct Caps {
    const char *name;
    const char *property, *value; // empty: whatever they are
    const char *meaning;          // the registry's name
};

constexpr Caps s_Pictures[] = {
    {"video/x-h264", "", "", "h264"},
    {"video/x-h265", "", "", "hevc"},
    {"video/mpeg", "mpegversion", "1", "mpeg1video"},
    {"video/mpeg", "mpegversion", "2", "mpeg2video"},
    {"video/mpeg", "mpegversion", "4", "mpeg4"},
    {"video/x-xvid", "", "", "mpeg4"},
    {"video/x-divx", "divxversion", "5", "mpeg4"},
    {"video/x-divx", "divxversion", "4", "mpeg4"},
    {"video/x-divx", "divxversion", "3", "msmpeg4v3"},
    {"video/x-h263", "", "", "h263"},
    {"video/x-wmv", "wmvversion", "1", "wmv1"},
    {"video/x-wmv", "wmvversion", "2", "wmv2"},
    {"video/x-wmv", "wmvversion", "3", "wmv3"},
    {"video/x-wmv", "wmvversion", "3", "vc1"},
    {"video/x-vp8", "", "", "vp8"},
    {"video/x-vp9", "", "", "vp9"},
    {"video/x-av1", "", "", "av1"},
    {"video/x-theora", "", "", "theora"},
    {"video/x-dv", "", "", "dvvideo"},
};

constexpr Caps s_Sounds[] = {
    {"audio/mpeg", "layer", "3", "mp3"},
    {"audio/mpeg", "layer", "2", "mp2"},
    {"audio/mpeg", "layer", "1", "mp1"},
    {"audio/mpeg", "mpegversion", "2", "aac"},
    {"audio/mpeg", "mpegversion", "4", "aac"},
    {"audio/x-ac3", "", "", "ac3"},
    {"audio/ac3", "", "", "ac3"},
    {"audio/x-private1-ac3", "", "", "ac3"},
    {"audio/x-eac3", "", "", "eac3"},
    {"audio/eac3", "", "", "eac3"},
    {"audio/x-dts", "", "", "dts"},
    {"audio/x-private1-dts", "", "", "dts"},
    {"audio/x-wma", "wmaversion", "1", "wmav1"},
    {"audio/x-wma", "wmaversion", "2", "wmav2"},
    {"audio/x-wma", "wmaversion", "3", "wmapro"},
    {"audio/x-wma", "wmaversion", "4", "wmalossless"},
    {"audio/x-lpcm", "", "", "pcm_dvd"},
    {"audio/x-private1-lpcm", "", "", "pcm_dvd"},
    {"audio/x-raw", "format", "S16LE", "pcm_s16le"},
    {"audio/x-raw", "format", "S16BE", "pcm_s16be"},
    {"audio/x-raw", "format", "S24LE", "pcm_s24le"},
    {"audio/x-flac", "", "", "flac"},
    {"audio/x-alac", "", "", "alac"},
    {"audio/x-vorbis", "", "", "vorbis"},
    {"audio/x-opus", "", "", "opus"},
    {"audio/AMR", "", "", "amr_nb"},
    {"audio/AMR-WB", "", "", "amr_wb"},
};

constexpr Caps s_Containers[] = {
    {"video/mpegts", "packetsize", "188", "mpegts"},
    {"video/mpegts", "packetsize", "192", "mpegts_m2ts"},
    {"video/mpeg", "mpegversion", "2", "mpegps"},
    {"video/mpeg", "mpegversion", "1", "mpegps_mpeg1"},
    {"video/quicktime", "variant", "iso", "mp4/isom"},
    {"video/quicktime", "variant", "iso", "mp4/mp42"},
    {"video/quicktime", "variant", "iso", "mp4/mp41"},
    {"video/quicktime", "variant", "3gpp", "mp4/3gp"},
    {"video/quicktime", "variant", "apple", "mp4/qt"},
    {"video/x-m4v", "", "", "mp4/m4v"},
    {"audio/x-m4a", "", "", "mp4/m4a"},
    {"application/x-3gp", "", "", "mp4/3gp"},
    {"video/x-matroska", "", "", "matroska"},
    {"audio/x-matroska", "", "", "matroska"},
    {"video/webm", "", "", "matroska/webm"},
    {"audio/webm", "", "", "matroska/webm"},
    {"video/x-msvideo", "", "", "avi"},
    {"video/x-ms-asf", "", "", "asf"},
    {"video/x-flv", "", "", "flv"},
    {"application/ogg", "", "", "ogg"},
    {"audio/ogg", "", "", "ogg"},
    {"video/ogg", "", "", "ogg"},
    {"application/x-id3", "", "", "mp3"},
    {"audio/x-wav", "", "", "wav"},
    {"audio/x-aiff", "", "", "aiff"},
    {"audio/x-caf", "", "", "caf"},
};

// Fields that hold of all that the codec or container is found as, or that it is told by.
constexpr std::string_view s_Settled[] = {
    "name",        "mpegversion",   "layer",  "systemstream", "wmaversion", "wmvversion", "format",
    "divxversion", "stream-format", "parsed", "framed",       "variant",    "packetsize", "fourcc"};

bool isSettled(const Field &field)
{
    return std::ranges::find(s_Settled, field.name) != std::end(s_Settled);
}

std::string shown(const Field &field)
{
    if (field.range)
        return fmt::format("{} {} to {}", field.name, field.range->first, field.range->second);
    return fmt::format("{} {}", field.name, fmt::join(field.values, ", "));
}

Note noteOf(const DlnaRestriction &restriction, Player &player)
{
    return {player.remarks, restriction.file, restriction.line, restriction.type};
}

Note noteOf(const Field &field, const DlnaRestriction &restriction, Player &player)
{
    return {player.remarks, field.file, field.line,
            fmt::format("{} {}", restriction.type, printable(shown(field)))};
}

/// Tells of values that a field lists in vain, since an inherited one must hold as well.
void noteVainValues(const DlnaRestriction &restriction, Player &player)
{
    for (const Field &field : restriction.fields)
        for (const std::string &value : field.values)
            for (const Field &other : restriction.fields)
                if (other.name == field.name && other.ancestor > field.ancestor &&
                    !other.admits(value))
                    noteOf(field, restriction, player)
                        .leftOut("{} is not in {}:{}, which must hold as well", printable(value),
                                 other.file, other.line);
}

/// Whether all fields of the name take the value; without any, all is taken.
bool admits(const DlnaRestriction &restriction, std::string_view name, const std::string &value)
{
    return std::ranges::all_of(restriction.fields, [&](const Field &field) {
        return field.name != name || field.admits(value);
    });
}

bool fits(const DlnaRestriction &restriction, const Caps &row)
{
    // MPEG audio is told by its version and its layer; the layers are MPEG-1's
    const bool isLayer = std::string_view(row.property) == "layer";
    return admits(restriction, "name", row.name) && admits(restriction, row.property, row.value) &&
           (!isLayer || admits(restriction, "mpegversion", "1"));
}

/// What the fields leave of a table, by its meaning and each once.
std::vector<std::string> meanings(const DlnaRestriction &restriction, std::span<const Caps> table,
                                  Player &player)
{
    const Note note = noteOf(restriction, player);
    std::vector<std::string> found;
    if (std::ranges::find(restriction.fields, "name", &Field::name) == restriction.fields.end()) {
        note.stricter("it names no format, so nothing is known to fit");
        return found;
    }
    for (const Caps &row : table)
        if (fits(restriction, row) && std::ranges::find(found, row.meaning) == found.end())
            found.emplace_back(row.meaning);
    if (!found.empty()) return found;
    std::vector<std::string> wanted;
    for (const Field &field : restriction.fields)
        if (isSettled(field)) wanted.push_back(shown(field));
    note.stricter("nothing known is {}, so nothing fits",
                  printable(fmt::format("{}", fmt::join(wanted, "; "))));
    return found;
}

/// The field's numbers from 1; those that follow each other as one range.
std::vector<Range> rangesOf(const Field &field)
{
    std::vector<Range> ranges;
    const auto addRange = [&](const std::string &least, const std::string &most) {
        const auto from = dlnaNumber(least), to = dlnaNumber(most);
        if (!from || !to || *to < *from || *to < 1) return;
        const auto clamp = [](double value) {
            return static_cast<int>(std::clamp<double>(value, 0, std::numeric_limits<int>::max()));
        };
        ranges.push_back({*from <= 1 ? 0 : clamp(*from), clamp(*to)});
    };
    if (field.range) addRange(field.range->first, field.range->second);
    for (const std::string &value : field.values) addRange(value, value);
    std::ranges::sort(ranges, {}, &Range::least);
    std::vector<Range> all;
    for (const Range range : ranges)
        if (!all.empty() && range.least == all.back().most + 1)
            all.back().most = range.most;
        else
            all.push_back(range);
    return all;
}

template <Range Limits::*range>
Union numbers(const Field &field, int, const Note &note)
{
    Union all;
    for (const Range each : rangesOf(field)) {
        Limits limits;
        limits.*range = each;
        add(all, limits);
    }
    if (all.empty()) note.stricter("no number, so nothing fits");
    return all;
}

Union profiles(const Field &field, int codec, const Note &note)
{
    Limits limits;
    if (allProfilesOf(codec) == 0) {
        note.leftOut("no profiles of {} are known", codecText(codec));
        return {limits};
    }
    for (const std::string &value : field.values)
        if (codecHasProfile(codec, value.c_str()))
            limits.profiles |= profilesNamed(value);
        else
            note.stricter("{} has no profile \"{}\"", codecText(codec), printable(value));
    return limits.profiles == 0 ? Union{} : Union{limits};
}

Union levels(const Field &field, int codec, const Note &note)
{
    const std::span<const int> known = knownLevels(codec);
    if (known.empty() && codec == "mpeg2video"_codec)
        note.leftOut("the levels of MPEG-2 run backwards; the sizes say most of it");
    else if (known.empty())
        note.leftOut("the levels of {} have no order", codecText(codec));
    if (known.empty()) return {Limits{}};
    const auto isTaken = [&](int level) {
        return std::ranges::any_of(field.values, [&](const std::string &value) {
            return codedLevel(codec, value) == level;
        });
    };
    if (std::ranges::none_of(known, isTaken))
        note.stricter("none is a level of {}, so nothing fits", codecText(codec));
    return levelsWhere(isTaken, codec, note);
}

Union interlacing(const Field &field, int, const Note &note)
{
    return interlacingWhere(field.admits("false"), field.admits("true"), "so nothing fits", note);
}

/// The versions of MPEG audio differ in their sample rates.
Union ratesOfVersion(const Field &field, int, const Note &)
{
    constexpr struct {
        const char *version;
        Range rates;
    } s_Versions[] = {{"1", {32000, 0}}, {"2", {16000, 24000}}, {"3", {0, 12000}}};
    Union all;
    for (const auto &row : s_Versions)
        if (field.admits(row.version)) add(all, {.sampleRate = row.rates});
    return all;
}

constexpr struct {
    const char *type, *field; // of the restriction
    Union (*read)(const Field &field, int codec, const Note &note);
} s_Readers[] = {
    {"video", "width", numbers<&Limits::width>},
    {"video", "height", numbers<&Limits::height>},
    {"video", "bitrate", numbers<&Limits::bitrate>},
    {"video", "profile", profiles},
    {"video", "level", levels},
    {"video", "interlaced", interlacing},
    {"audio", "channels", numbers<&Limits::channels>},
    {"audio", "bitrate", numbers<&Limits::bitrate>},
    {"audio", "rate", numbers<&Limits::sampleRate>},
    {"audio", "mpegaudioversion", ratesOfVersion},
    {"audio", "profile", profiles},
    {"audio", "base-profile", profiles},
};

Union limitsOf(const Field &field, const std::string &type, int codec, const Note &note)
{
    for (const auto &row : s_Readers)
        if (type == row.type && field.name == row.field) return row.read(field, codec, note);
    if (!isSettled(field)) note.leftOut("a Device profile doesn't limit it");
    return {Limits{}};
}

/// Whether the two are alike but for their sample rates, and no rate of the codec lies between.
bool isNext(const Limits &before, const Limits &after, int codec)
{
    Limits same = after;
    same.sampleRate = before.sampleRate;
    return same == before && before.sampleRate.most != 0 &&
           !hasRateBetween(codec, before.sampleRate.most, after.sampleRate.least);
}

/// Ranges of sample rates joined where they follow each other.
Union withRatesJoined(Union all, int codec)
{
    std::ranges::sort(all, {}, [](const Limits &limits) { return limits.sampleRate.least; });
    Union joined;
    for (const Limits &limits : all) {
        const auto before = std::ranges::find_if(
            joined, [&](const Limits &other) { return isNext(other, limits, codec); });
        if (before != joined.end())
            before->sampleRate.most = limits.sampleRate.most;
        else
            joined.push_back(limits);
    }
    return joined;
}

/// What fits of a codec, as rules can say it.
Union limitsFor(const DlnaRestriction &restriction, int codec, Player &player)
{
    Union all = {{.codec = codec}};
    for (const Field &field : restriction.fields)
        all = intersection(
            all, limitsOf(field, restriction.type, codec, noteOf(field, restriction, player)));
    if (!isPicture(codec))
        return withSayableRates(withRatesJoined(all, codec), noteOf(restriction, player));
    Union parts;
    for (const Limits &limits : all)
        for (const Limits &part : splitByOddities(limits)) add(parts, part);
    return parts;
}

} // namespace

Union limitsThatFit(const DlnaRestriction &restriction, Player &player)
{
    const auto table = restriction.type == "video" ? std::span<const Caps>(s_Pictures) : s_Sounds;
    noteVainValues(restriction, player);
    Union all;
    for (const std::string &codec : meanings(restriction, table, player))
        for (const Limits &limits : limitsFor(restriction, codecNamed(codec), player))
            add(all, limits);
    return all;
}

std::vector<Container> containersThatFit(const DlnaRestriction &restriction, bool isMusic,
                                         Player &player)
{
    constexpr std::string_view s_Seen[] = {"name", "mpegversion", "packetsize", "variant",
                                           "systemstream"};
    std::vector<Container> all;
    for (const std::string &name : meanings(restriction, s_Containers, player)) {
        Container container{containerNamed(name), {}, {}, name == "mpegts_m2ts"};
        if (!isMusic && container.format == "mpegts_m2ts"_container)
            container.format = "mpegts"_container;
        if (!isMusic && container.format == "mpegps_mpeg1"_container)
            container.format = "mpegps"_container;
        all.push_back(container);
    }
    for (const Field &field : restriction.fields) {
        const Note note(player.remarks, field.file, field.line, "container " + field.name);
        if (!isMusic && field.name == "packetsize")
            note.looser("for a video, rules take packets of 188 and of 192 bytes for one");
        if (std::ranges::find(s_Seen, field.name) == std::end(s_Seen))
            note.leftOut("a Device profile doesn't limit it");
    }
    return all;
}

int bareContainer(int codec)
{
    constexpr struct {
        int codec, container;
    } s_Bare[] = {
        {"mp3"_codec, "mp3"_container},    {"mp2"_codec, "mp3"_container},
        {"mp1"_codec, "mp3"_container},    {"aac"_codec, "adts"_container},
        {"ac3"_codec, "ac3"_container},    {"eac3"_codec, "eac3"_container},
        {"dts"_codec, "dts"_container},    {"flac"_codec, "flac"_container},
        {"amr_nb"_codec, "amr"_container}, {"amr_wb"_codec, "amr"_container},
    };
    const auto *const row =
        std::ranges::find_if(s_Bare, [codec](const auto &each) { return each.codec == codec; });
    return row == std::end(s_Bare) ? 0 : row->container;
}

} // namespace vornak::tool

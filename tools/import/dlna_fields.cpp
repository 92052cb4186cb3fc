#include "tools/import/dlna_fields.h"

#include "base/media_ids.h"
#include "platform/registry_names.h"
#include "tools/import/names.h"
#include "tools/import/said_limits.h"
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

class FieldReader {
public:
    FieldReader(const DlnaRestriction &restriction, Player &player)
        : restriction_(restriction), player_(player)
    {}

    /// Tells of values that a field lists in vain, since an inherited one must hold as well.
    void noteVainValues() const
    {
        for (const Field &field : restriction_.fields)
            for (const std::string &value : field.values)
                for (const Field &other : restriction_.fields)
                    if (other.name == field.name && other.ancestor > field.ancestor &&
                        !other.admits(value))
                        note(field)(Remark::LeftOut,
                                    fmt::format("{} is not in {}:{}, which must hold as well",
                                                printable(value), other.file, other.line));
    }

    /// What the fields leave of a table, by its meaning and each once.
    std::vector<std::string> meanings(std::span<const Caps> table) const
    {
        std::vector<std::string> found;
        for (const Caps &row : table)
            if (isNamed() && admits("name", row.name) && admits(row.property, row.value) &&
                isPlausible(row) && std::ranges::find(found, row.meaning) == found.end())
                found.emplace_back(row.meaning);
        if (found.empty())
            note(restriction_.file, restriction_.line, restriction_.type)(
                Remark::Stricter,
                isNamed() ? fmt::format("nothing known is {}, so nothing fits", wanted())
                          : "it names no format, so nothing is known to fit");
        return found;
    }

    Union<PictureLimits> pictures(int codec) const
    {
        Union<PictureLimits> all = {PictureLimits{}};
        for (const Field &field : restriction_.fields)
            all = intersection(all, picturesOf(field, codec));
        Union<PictureLimits> finished;
        for (PictureLimits &limits : all) {
            limits.codec = codec;
            for (const PictureLimits &part : splitByOddities(limits)) add(finished, part);
        }
        return finished;
    }

    Union<SoundLimits> sounds(int codec) const
    {
        Union<SoundLimits> all = {SoundLimits{}};
        for (const Field &field : restriction_.fields)
            all = intersection(all, soundsOf(field, codec));
        return sayable(all, codec);
    }

private:
    Note note(const std::string &file, int line, const std::string &what) const
    {
        return noteAt(player_, file, line, what);
    }
    Note note(const Field &field) const
    {
        return note(field.file, field.line,
                    fmt::format("{} {}", restriction_.type, printable(shown(field))));
    }

    static std::string shown(const Field &field)
    {
        if (field.range)
            return fmt::format("{} {} to {}", field.name, field.range->first, field.range->second);
        return fmt::format("{} {}", field.name, fmt::join(field.values, ", "));
    }

    bool isNamed() const
    {
        return std::ranges::any_of(restriction_.fields,
                                   [](const Field &field) { return field.name == "name"; });
    }

    std::string wanted() const
    {
        std::string text;
        for (const Field &field : restriction_.fields)
            if (std::ranges::find(s_Settled, field.name) != std::end(s_Settled))
                text += (text.empty() ? "" : "; ") + shown(field);
        return printable(text);
    }

    /// Whether all fields of the name take the value; without any, all is taken.
    bool admits(std::string_view name, const std::string &value) const
    {
        return std::ranges::all_of(restriction_.fields, [&](const Field &field) {
            return field.name != name || field.admits(value);
        });
    }

    /// MPEG audio is told by its version and its layer; the layers are MPEG-1's.
    bool isPlausible(const Caps &row) const
    {
        const bool isLayer = std::string_view(row.property) == "layer";
        return !isLayer || admits("mpegversion", "1");
    }

    static std::vector<Range> rangesOf(const Field &field)
    {
        std::vector<Range> ranges;
        const auto addRange = [&](const std::string &least, const std::string &most) {
            const auto from = dlnaNumber(least);
            const auto to = dlnaNumber(most);
            if (!from || !to || *to < *from || *to < 1) return;
            const auto clamp = [](double value) {
                return static_cast<int>(
                    std::clamp<double>(value, 0, std::numeric_limits<int>::max()));
            };
            ranges.push_back({*from <= 1 ? 0 : clamp(*from), clamp(*to)});
        };
        if (field.range) addRange(field.range->first, field.range->second);
        for (const std::string &value : field.values) addRange(value, value);
        return joined(std::move(ranges));
    }

    /// Numbers that follow each other as one range.
    static std::vector<Range> joined(std::vector<Range> ranges)
    {
        std::ranges::sort(ranges, {}, &Range::least);
        std::vector<Range> all;
        for (const Range range : ranges)
            if (!all.empty() && range.least == all.back().most + 1)
                all.back().most = range.most;
            else
                all.push_back(range);
        return all;
    }

    template <class Limits>
    Union<Limits> numbers(const Field &field, Range Limits::*range) const
    {
        Union<Limits> all;
        for (const Range each : rangesOf(field)) {
            Limits limits;
            limits.*range = each;
            add(all, limits);
        }
        if (all.empty()) note(field)(Remark::Stricter, "no number, so nothing fits");
        return all;
    }

    template <class Limits>
    Union<Limits> profiles(const Field &field, int codec) const
    {
        if (allProfilesOf(codec) == 0) {
            note(field)(Remark::LeftOut,
                        fmt::format("no profiles of {} are known", codecText(codec)));
            return {Limits{}};
        }
        Limits limits;
        for (const std::string &value : field.values)
            if (codecHasProfile(codec, value.c_str()))
                limits.profiles |= profilesNamed(value);
            else
                note(field)(Remark::Stricter, fmt::format("{} has no profile \"{}\"",
                                                          codecText(codec), printable(value)));
        if (limits.profiles == 0) return {};
        return {limits};
    }

    Union<PictureLimits> levels(const Field &field, int codec) const
    {
        const std::span<const int> known = knownLevels(codec);
        if (known.empty()) {
            note(field)(Remark::LeftOut,
                        codec == "mpeg2video"_codec
                            ? "the levels of MPEG-2 run backwards; the sizes say most of it"
                            : fmt::format("the levels of {} have no order", codecText(codec)));
            return {PictureLimits{}};
        }
        std::vector<int> taken;
        for (const std::string &value : field.values)
            if (const std::optional<int> level = codedLevel(codec, value)) taken.push_back(*level);
        const auto isTaken = [&](int level) {
            return std::ranges::find(taken, level) != taken.end();
        };
        if (!isTaken(known.front()))
            note(field)(Remark::Stricter,
                        "a rule limits levels upwards alone, so those above a gap are transcoded");
        return levelsWhere(isTaken, codec, note(field));
    }

    Union<PictureLimits> picturesOf(const Field &field, int codec) const
    {
        if (field.name == "width") return numbers(field, &PictureLimits::width);
        if (field.name == "height") return numbers(field, &PictureLimits::height);
        if (field.name == "bitrate") return numbers(field, &PictureLimits::bitrate);
        if (field.name == "profile") return profiles<PictureLimits>(field, codec);
        if (field.name == "level") return levels(field, codec);
        if (field.name == "interlaced")
            return interlacingWhere(field.admits("false"), field.admits("true"), "so nothing fits",
                                    note(field));
        noteUnlimited(field);
        return {PictureLimits{}};
    }

    Union<SoundLimits> soundsOf(const Field &field, int codec) const
    {
        if (field.name == "channels") return numbers(field, &SoundLimits::channels);
        if (field.name == "bitrate") return numbers(field, &SoundLimits::bitrate);
        if (field.name == "rate") return numbers(field, &SoundLimits::sampleRate);
        if (field.name == "mpegaudioversion") return ratesOfVersion(field);
        if (field.name == "profile" || field.name == "base-profile")
            return profiles<SoundLimits>(field, codec);
        noteUnlimited(field);
        return {SoundLimits{}};
    }

    /// The versions of MPEG audio differ in their sample rates.
    static Union<SoundLimits> ratesOfVersion(const Field &field)
    {
        constexpr struct {
            const char *version;
            Range rates;
        } s_Versions[] = {{"1", {32000, 0}}, {"2", {16000, 24000}}, {"3", {0, 12000}}};
        Union<SoundLimits> all;
        for (const auto &row : s_Versions) {
            SoundLimits limits;
            limits.sampleRate = row.rates;
            if (field.admits(row.version)) add(all, limits);
        }
        return all;
    }

    void noteUnlimited(const Field &field) const
    {
        if (std::ranges::find(s_Settled, field.name) != std::end(s_Settled)) return;
        note(field)(Remark::LeftOut, "a Device profile doesn't limit it");
    }

    /// Ranges of sample rates as rules can say them, joined where no rate of the codec lies
    /// between.
    Union<SoundLimits> sayable(Union<SoundLimits> all, int codec) const
    {
        std::ranges::sort(all, {},
                          [](const SoundLimits &limits) { return limits.sampleRate.least; });
        Union<SoundLimits> joined;
        for (const SoundLimits &limits : all) {
            const auto before = std::ranges::find_if(
                joined, [&](const SoundLimits &other) { return isNext(other, limits, codec); });
            if (before != joined.end())
                before->sampleRate.most = limits.sampleRate.most;
            else
                joined.push_back(limits);
        }
        for (SoundLimits &limits : joined) limits.codec = codec;
        return withSayableRates(joined,
                                note(restriction_.file, restriction_.line, restriction_.type));
    }

    static bool isNext(const SoundLimits &before, const SoundLimits &after, int codec)
    {
        SoundLimits same = after;
        same.sampleRate = before.sampleRate;
        if (same != before || before.sampleRate.most == 0) return false;
        return !hasRateBetween(codec, before.sampleRate.most, after.sampleRate.least);
    }

    const DlnaRestriction &restriction_;
    Player &player_;
};

/// The union of what fits for each codec that the restriction is found to be of.
template <class Limits>
Union<Limits> limitsThatFit(const DlnaRestriction &restriction, std::span<const Caps> table,
                            Union<Limits> (FieldReader::*read)(int codec) const, Player &player)
{
    const FieldReader reader(restriction, player);
    reader.noteVainValues();
    Union<Limits> all;
    for (const std::string &codec : reader.meanings(table))
        for (const Limits &limits : (reader.*read)(codecNamed(codec))) add(all, limits);
    return all;
}

} // namespace

Union<PictureLimits> picturesThatFit(const DlnaRestriction &restriction, Player &player)
{
    return limitsThatFit(restriction, s_Pictures, &FieldReader::pictures, player);
}

Union<SoundLimits> soundsThatFit(const DlnaRestriction &restriction, Player &player)
{
    return limitsThatFit(restriction, s_Sounds, &FieldReader::sounds, player);
}

std::vector<Container> containersThatFit(const DlnaRestriction &restriction, bool isMusic,
                                         Player &player)
{
    constexpr std::string_view s_Seen[] = {"name", "mpegversion", "packetsize", "variant",
                                           "systemstream"};
    const FieldReader reader(restriction, player);
    std::vector<Container> all;
    for (const std::string &name : reader.meanings(s_Containers)) {
        Container container{containerNamed(name), {}, {}, name == "mpegts_m2ts"};
        if (!isMusic && container.format == "mpegts_m2ts"_container)
            container.format = "mpegts"_container;
        if (!isMusic && container.format == "mpegps_mpeg1"_container)
            container.format = "mpegps"_container;
        all.push_back(container);
    }
    for (const Field &field : restriction.fields) {
        const Note note = noteAt(player, field.file, field.line, "container " + field.name);
        if (!isMusic && field.name == "packetsize")
            note(Remark::LeftOut,
                 "for a video, rules take packets of 188 and of 192 bytes for one");
        if (std::ranges::find(s_Seen, field.name) == std::end(s_Seen))
            note(Remark::LeftOut, "a Device profile doesn't limit it");
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

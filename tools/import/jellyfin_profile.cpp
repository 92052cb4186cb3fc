#include "tools/import/jellyfin_profile.h"

#include "base/media_ids.h"
#include "tools/import/container_facts.h"
#include "tools/import/jellyfin_condition.h"
#include "tools/import/limits.h"
#include "tools/import/names.h"
#include "tools/import/said_limits.h"
#include "tools/import/text_file.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <tuple>
#include <utility>

namespace vornak::tool {
namespace {

// named, since clang 14 calls them in a template
constexpr int kMatroska = "matroska"_container;
constexpr int kWebm = "matroska/webm"_container;
constexpr std::size_t kMostCombinations = 300'000;
constexpr std::size_t kMostAlternatives = 40;
constexpr std::size_t kMostWishes = 100;

/// A list of names: these, or all but these.
struct Selection {
    bool isAll = true; ///< an absent list
    bool isExcept = false;
    std::vector<int> ids;

    bool takes(int id) const
    {
        return isAll || (std::ranges::find(ids, id) != ids.end()) != isExcept;
    }

    /// Whether Matroska is taken but not WebM, which is the same file with other codecs.
    bool isButWebm() const { return isExcept && takes(kMatroska) && !takes(kWebm); }
};

enum StreamKind { Picture, SoundOfVideo, Music };

constexpr NamedNumber s_MediaTypes[] = {
    {"Audio", 0}, {"Video", 1}, {"Photo", 2}, {"Subtitle", 3}, {"Lyric", 4}};
constexpr NamedNumber s_CodecTypes[] = {
    {"Video", Picture}, {"VideoAudio", SoundOfVideo}, {"Audio", Music}};

/// Conditions on the streams of one kind; all hold, where those for applying do.
struct LimitSet {
    StreamKind kind;
    Selection codecs, containers;
    std::vector<JellyfinCondition> applying, conditions;
    std::string place; ///< in the document
    int line;
};

/// Names that stand for a family of codecs, none of which is called so in a file.
bool isFamily(const std::string &name)
{
    return name == "pcm" || name == "lpcm" || name == "wma" || name == "dsd";
}

std::vector<int> codecsNamed(const std::string &name, bool picture)
{
    const int codec = codecNamed(name);
    if (isFamily(name) || codec <= 0 || isPicture(codec) != picture) return {};
    // what extends DTS is a codec of its own here alone
    if (codec == "dts"_codec) return {codec, "dtshd"_codec};
    return {codec};
}

template <class Limits>
constexpr bool kIsPicture = std::is_same_v<Limits, PictureLimits>;

class Reader {
public:
    Reader(const std::string &path, Player &player)
        : path_(path), file_(shownFileName(path)), player_(player)
    {}

    void read(ObjectReader &root)
    {
        readTotals(root);
        for (ObjectReader &object : root.list("CodecProfiles")) readCodecProfile(object);
        for (ObjectReader &object : root.list("ContainerProfiles")) readContainerProfile(object);
        for (ObjectReader &object : root.list("TranscodingProfiles")) readTranscoding(object);
        for (ObjectReader &object : root.list("DirectPlayProfiles")) readDirectPlay(object);
        if (root.has("SubtitleProfiles"))
            noteAt(root.lineOf("SubtitleProfiles"), "SubtitleProfiles")(
                Remark::LeftOut, "a Device profile says nothing of subtitles");
        root.noteUnknown(player_);
    }

private:
    /// @param place  what it is about, perhaps with a point behind it
    Note noteAt(int line, std::string place)
    {
        if (place.ends_with('.')) place.pop_back();
        return tool::noteAt(player_, file_, line, place);
    }

    void readTotals(ObjectReader &root)
    {
        player_.name = root.text("Name");
        for (const char *const key :
             {"MaxStreamingBitrate", "MaxStaticBitrate", "MusicStreamingTranscodingBitrate"})
            if (root.has(key))
                noteAt(root.lineOf(key), key + (" " + printable(root.text(key))))(
                    Remark::LeftOut, "what a connection carries of a whole file; a Device profile "
                                     "limits each stream");
    }

    /// A comma list. @param idsOf  of a name; none: it isn't known
    template <class IdsOf>
    Selection readSelection(ObjectReader &object, const char *key, IdsOf idsOf, const char *what)
    {
        const std::string text = object.text(key);
        Selection selection{splitList(text, ',').empty(), text.starts_with('-'), {}};
        const std::vector<std::string> names =
            splitList(std::string_view(text).substr(selection.isExcept ? 1 : 0), ',');
        for (const std::string &written : names) {
            const std::vector<int> ids = idsOf(lowerCase(written));
            for (const int id : ids)
                if (std::ranges::find(selection.ids, id) == selection.ids.end())
                    selection.ids.push_back(id);
            if (ids.empty())
                noteAt(object.lineOf(key), object.place() + key)(
                    Remark::LeftOut,
                    fmt::format("no {} is known by the name \"{}\"", what, printable(written)));
        }
        return selection;
    }

    Selection readCodecs(ObjectReader &object, const char *key, bool picture)
    {
        return readSelection(
            object, key, [picture](const std::string &name) { return codecsNamed(name, picture); },
            picture ? "video codec" : "audio codec");
    }

    Selection readContainers(ObjectReader &object)
    {
        return readSelection(object, "Container", containersNamed, "container");
    }

    std::vector<JellyfinCondition> readConditions(ObjectReader &object, const char *key)
    {
        std::vector<JellyfinCondition> conditions;
        for (ObjectReader &each : object.list(key))
            if (const auto condition = readCondition(each, file_, player_))
                conditions.push_back(*condition);
        return conditions;
    }

    /// How a comment names an object as the origin of a rule.
    static std::string originText(std::string_view place, int line)
    {
        return fmt::format("{} (line {})", place.substr(0, place.size() - 1), line);
    }

    /// The row of the type; null, with a remark, if it isn't known.
    template <std::size_t Size>
    const NamedNumber *readType(ObjectReader &object, const NamedNumber (&types)[Size])
    {
        const std::string written = object.text("Type");
        const NamedNumber *type = findNamed(types, written.empty() ? "0" : written);
        if (!type)
            noteAt(object.line(), object.place() + "Type")(
                Remark::LeftOut, fmt::format("no type that is known: {}", printable(written)));
        return type;
    }

    void readCodecProfile(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_CodecTypes);
        if (!type) return;
        sets_.push_back({static_cast<StreamKind>(type->number),
                         readCodecs(object, "Codec", type->number == Picture),
                         readContainers(object), readConditions(object, "ApplyConditions"),
                         readConditions(object, "Conditions"), object.place(), object.line()});
        if (!object.text("SubContainer").empty())
            noteAt(object.lineOf("SubContainer"), object.place() + "SubContainer")(
                Remark::LeftOut, "the parts of a stream in pieces; files have none");
        object.noteUnknown(player_);
    }

    void readContainerProfile(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_MediaTypes);
        if (!type) return;
        LimitSet set{Picture,
                     {},
                     readContainers(object),
                     {},
                     readConditions(object, "Conditions"),
                     object.place(),
                     object.line()};
        object.noteUnknown(player_);
        if (std::string_view(type->name) == "Audio") set.kind = Music;
        if (type->number <= 1) sets_.push_back(std::move(set));
    }

    void readTranscoding(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_MediaTypes);
        if (!type) return;
        const Selection formats = readContainers(object);
        const Selection pictures = readCodecs(object, "VideoCodec", true);
        const Selection sounds = readCodecs(object, "AudioCodec", false);
        const bool isVideo = std::string_view(type->name) == "Video";
        for (const int picture : isVideo ? pictures.ids : std::vector{0})
            for (const int sound : sounds.ids)
                for (const int format : formats.ids)
                    if (player_.wishes.size() < kMostWishes)
                        player_.wishes.push_back({isVideo, picture, sound, format});
        const std::string protocol = lowerCase(object.text("Protocol"));
        object.text("Context");
        if (protocol == "hls" || protocol == "1")
            noteAt(object.lineOf("Protocol"), object.place() + "Protocol")(
                Remark::LeftOut, "a file is made as a whole, not in pieces");
        for (const JellyfinCondition &condition : readConditions(object, "Conditions"))
            noteAt(condition.line, condition.text)(
                Remark::LeftOut, "what is made is described by the first rule alone");
        object.noteUnknown(player_);
    }

    void readDirectPlay(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_MediaTypes);
        if (!type) return;
        const Selection formats = readContainers(object);
        const Selection pictures = readCodecs(object, "VideoCodec", true);
        const Selection sounds = readCodecs(object, "AudioCodec", false);
        object.noteUnknown(player_);
        const int origin = originOf(player_, originText(object.place(), object.line()));
        if (type->number > 1)
            noteAt(object.line(), object.place())(
                Remark::LeftOut,
                fmt::format("a Device profile has no rules for the type {}", type->name));
        else if (std::string_view(type->name) == "Audio")
            addMusic(object, formats, sounds, origin);
        else
            addVideo(object, formats, pictures, sounds, origin);
    }

    void addMusic(const ObjectReader &object, const Selection &formats, const Selection &sounds,
                  int origin)
    {
        for (const std::vector<int> &alike : groupsOf(formatsOf(object, formats), formats)) {
            const int format = alike.front();
            const bool isButWebm = format == kMatroska && formats.isButWebm();
            for (const int codec :
                 codecsOf<SoundLimits>(object, sounds, format, Music, isButWebm)) {
                if (isButWebm && canHold(kWebm, codec)) continue;
                const auto &limits = limitsFor<SoundLimits>(codec, format, Music);
                count(1 + limits.size());
                for (const SoundLimits &sound : limits)
                    player_.ways.push_back({std::nullopt,
                                            sound,
                                            containersIn(alike, true, sound),
                                            {},
                                            originsFor(origin, codec, format, Music)});
            }
        }
    }

    void addVideo(const ObjectReader &object, const Selection &formats, const Selection &pictures,
                  const Selection &sounds, int origin)
    {
        for (const std::vector<int> &alike : groupsOf(formatsOf(object, formats), formats)) {
            const int format = alike.front();
            const bool isButWebm = format == kMatroska && formats.isButWebm();
            const auto audio =
                codecsOf<SoundLimits>(object, sounds, format, SoundOfVideo, isButWebm);
            for (const int codec :
                 codecsOf<PictureLimits>(object, pictures, format, Picture, isButWebm))
                for (const int sound : audio)
                    if (!isButWebm || !canHold(kWebm, codec) || !canHold(kWebm, sound))
                        addVideos(codec, sound, alike, origin);
        }
    }

    void addVideos(int codec, int audio, const std::vector<int> &alike, int origin)
    {
        const int format = alike.front();
        const auto &pictures = limitsFor<PictureLimits>(codec, format, Picture);
        const auto &sounds = limitsFor<SoundLimits>(audio, format, SoundOfVideo);
        count(1 + pictures.size() * sounds.size());
        for (const PictureLimits &picture : pictures)
            for (const SoundLimits &sound : sounds)
                player_.ways.push_back({picture, sound, containersIn(alike, false, sound),
                                        originsFor(origin, codec, format, Picture),
                                        originsFor(origin, audio, format, SoundOfVideo)});
    }

    static std::vector<Container> containersIn(const std::vector<int> &formats, bool isMusic,
                                               const SoundLimits &sound)
    {
        std::vector<Container> containers;
        containers.reserve(formats.size());
        for (const int format : formats)
            containers.push_back({format, mimeOf(format, isMusic),
                                  isMusic ? dlnaNameOfMusic(sound, format) : std::string()});
        return containers;
    }

    /// The containers of a list, those together that the same conditions concern.
    std::vector<std::vector<int>> groupsOf(const std::vector<int> &formats,
                                           const Selection &list) const
    {
        std::map<std::vector<bool>, std::vector<int>> groups;
        for (const int format : formats) {
            std::vector<bool> concerning = {format == kWebm,
                                            format == kMatroska && list.isButWebm()};
            for (const LimitSet &set : sets_) concerning.push_back(set.containers.takes(format));
            groups[concerning].push_back(format);
        }
        std::vector<std::vector<int>> all;
        all.reserve(groups.size());
        for (const auto &[concerning, alike] : groups) all.push_back(alike);
        return all;
    }

    void count(std::size_t combinations)
    {
        combinations_ += combinations;
        if (combinations_ > kMostCombinations)
            throw ImportError(path_, 0,
                              "its codecs, containers and conditions combine to more "
                              "kinds of files than a profile can hold");
    }

    /// The containers of a list. Any container stands as such only where none has conditions.
    std::vector<int> formatsOf(const ObjectReader &object, const Selection &formats)
    {
        const bool areLimited =
            std::ranges::any_of(sets_, [](const LimitSet &set) { return !set.containers.isAll; });
        if (!formats.isAll && !formats.isExcept) return formats.ids;
        if (formats.isAll && !areLimited) return {0};
        std::vector<int> all = allContainers();
        if (!formats.isExcept) return all;
        for (const int other : formats.ids) {
            std::erase(all, other);
            if (other == kWebm && formats.isButWebm())
                noteAt(object.line(), object.place())(
                    Remark::Stricter, "to a rule, Matroska with WebM's codecs alone is WebM, too, "
                                      "so it is transcoded");
            else if (std::erase(all, containerPart(other)) > 0)
                noteAt(object.line(), object.place())(
                    Remark::Stricter,
                    fmt::format("a rule for {} takes {}, too, so it is transcoded",
                                containerText(containerPart(other)), containerText(other)));
        }
        return all;
    }

    /// The codecs of a list. Any codec stands as such only where none has limits, since a rule for
    /// any codec looks at none; else the common ones stand for it. @param each  never "any"
    template <class Limits>
    std::vector<int> codecsOf(const ObjectReader &object, const Selection &codecs, int format,
                              StreamKind kind, bool each)
    {
        if (format == kWebm) return codecsOfWebm<Limits>(object, codecs);
        if (!codecs.isAll && !codecs.isExcept) return codecs.ids;
        std::vector<int> all = kIsPicture<Limits> ? commonPictures() : commonSounds();
        for (const LimitSet &set : sets_)
            for (const int id : set.codecs.ids)
                if (set.kind == kind && std::ranges::find(all, id) == all.end()) all.push_back(id);
        const bool isLimited =
            each || std::ranges::any_of(all, [&](int codec) {
                Limits unlimited;
                unlimited.codec = codec;
                return limitsFor<Limits>(codec, format, kind) != Union<Limits>{unlimited};
            });
        if (codecs.isAll && !isLimited) return {0};
        std::erase_if(all, [&](int codec) { return !codecs.takes(codec); });
        noteAt(object.line(), object.place())(
            Remark::Stricter, fmt::format("any {} codec{} is said as {} common ones",
                                          kind == Picture ? "video" : "audio",
                                          codecs.isAll ? "" : " but some", all.size()));
        return all;
    }

    /// To a rule, Matroska files are WebM, too; with WebM's few codecs they are just that.
    template <class Limits>
    std::vector<int> codecsOfWebm(const ObjectReader &object, const Selection &codecs)
    {
        noteAt(object.line(), object.place())(
            Remark::LeftOut, "a rule for WebM takes Matroska with the codecs of WebM, too");
        std::vector<int> all = kIsPicture<Limits> ? commonPictures() : commonSounds();
        std::erase_if(all,
                      [&](int codec) { return !codecs.takes(codec) || !canHold(kWebm, codec); });
        return all;
    }

    bool concerns(const LimitSet &set, int codec, int format, StreamKind kind) const
    {
        return set.kind == kind && set.codecs.takes(codec) && set.containers.takes(format);
    }

    std::vector<int> originsFor(int origin, int codec, int format, StreamKind kind)
    {
        std::vector<int> origins = {origin};
        for (const LimitSet &set : sets_)
            if (codec != 0 && concerns(set, codec, format, kind))
                origins.push_back(originOf(player_, originText(set.place, set.line)));
        return origins;
    }

    /// What is taken of a codec in a container.
    template <class Limits>
    const Union<Limits> &limitsFor(int codec, int format, StreamKind kind)
    {
        const auto [entry, isNew] =
            std::get<Known<Limits>>(known_).try_emplace({codec, format, kind});
        if (!isNew) return entry->second;
        Limits any;
        any.codec = codec;
        Union<Limits> all = {any};
        for (const LimitSet &set : sets_) {
            if (codec == 0 || !concerns(set, codec, format, kind)) continue;
            Union<Limits> narrowed = narrowedBy(set, codec, all);
            noteOddities(all, narrowed, noteAt(set.line, set.place));
            all = std::move(narrowed);
        }
        return entry->second = std::move(all);
    }

    /// Tells what else is turned away on account of what a set refuses.
    template <class Limits>
    static void noteOddities(const Union<Limits> &before, const Union<Limits> &after,
                             const Note &note)
    {
        if constexpr (kIsPicture<Limits>)
            for (const Limits &limits : after)
                if (std::ranges::find(before, limits.refused, &Limits::refused) == before.end())
                    tool::noteOddities(limits, note);
    }

    template <class Limits>
    static Union<Limits> split(const Union<Limits> &all)
    {
        Union<Limits> parts;
        if constexpr (!kIsPicture<Limits>)
            return all;
        else
            for (const Limits &limits : all)
                for (const Limits &part : splitByOddities(limits)) add(parts, part);
        return parts;
    }

    /// What keeps both; of very many cases the first, so that it is stricter.
    template <class Limits>
    Union<Limits> both(const Union<Limits> &one, Union<Limits> other, const Note &note) const
    {
        constexpr std::size_t kMostCases = 100;
        const bool areMany = other.size() > kMostCases;
        if (areMany) other.resize(kMostCases);
        Union<Limits> common = intersection(one, other);
        if (areMany || common.size() > kMostCases)
            note(Remark::Stricter, "more cases than rules are made for: it holds in some");
        if (common.size() > kMostCases) common.resize(kMostCases);
        return common;
    }

    /// A union as the conditions of a set leave it.
    template <class Limits>
    Union<Limits> narrowedBy(const LimitSet &set, int codec, const Union<Limits> &all)
    {
        Union<Limits> whereItApplies = {Limits{}};
        for (const JellyfinCondition &condition : set.conditions)
            if (const Note note = noteAt(condition.line, condition.text);
                const auto kept = thatKeep<Limits>(condition, codec, note))
                whereItApplies = both(whereItApplies, *kept, note);
        Union<Limits> alternatives = whereItApplies;
        for (const JellyfinCondition &condition : set.applying)
            alternatives = both(alternatives, whereItMay<Limits>(condition, codec),
                                noteAt(condition.line, condition.text));
        for (const JellyfinCondition &condition : set.applying)
            for (const Limits &limits : whereNot<Limits>(condition, codec))
                add(alternatives, limits);
        Union<Limits> narrowed = split(intersection(all, alternatives));
        if (narrowed.size() <= kMostAlternatives) return narrowed;
        noteAt(set.line, set.place)(Remark::Stricter, "more cases than rules are made for: its "
                                                      "conditions hold in all");
        narrowed = split(intersection(all, whereItApplies));
        if (narrowed.size() > kMostAlternatives) narrowed.resize(kMostAlternatives);
        return narrowed;
    }

    /// Where a condition for applying holds; everywhere, if that can't be said exactly. It keeps
    /// the cases apart, so that there are fewer that overlap.
    template <class Limits>
    static Union<Limits> whereItMay(const JellyfinCondition &condition, int codec)
    {
        bool isExact = true;
        const Note inexact = [&](Remark::Kind, const std::string &) { isExact = false; };
        const auto kept = thatKeep<Limits>(condition, codec, inexact);
        return kept && isExact ? *kept : Union<Limits>{Limits{}};
    }

    /// Where a condition for applying doesn't hold; nowhere, if that can't be said exactly.
    template <class Limits>
    Union<Limits> whereNot(const JellyfinCondition &condition, int codec)
    {
        bool isExact = true;
        const Note inexact = [&](Remark::Kind, const std::string &) { isExact = false; };
        Union<Limits> all = {Limits{}};
        for (const JellyfinCondition &negated : negationOf(condition)) {
            const auto kept = thatKeep<Limits>(negated, codec, inexact);
            if (!kept) isExact = false;
            if (isExact) all = both(all, *kept, noteAt(condition.line, condition.text));
        }
        if (isExact && !all.empty() && takesUnknown(condition) && !condition.isRequired)
            noteAt(condition.line, condition.text)(
                Remark::LeftOut, "where it isn't known, what it is asked for doesn't hold");
        if (isExact) return all;
        noteAt(condition.line, condition.text)(
            Remark::Stricter, "no rule can tell where it holds, so what it is asked for holds "
                              "everywhere");
        return {};
    }

    const std::string &path_;
    std::string file_;
    Player &player_;
    std::vector<LimitSet> sets_;
    template <class Limits>
    using Known = std::map<std::tuple<int, int, StreamKind>, Union<Limits>>;
    std::tuple<Known<PictureLimits>, Known<SoundLimits>> known_;
    std::size_t combinations_ = 0;
};

bool isProfile(ObjectReader &object)
{
    return object.has("DirectPlayProfiles") || object.has("TranscodingProfiles") ||
           object.has("CodecProfiles");
}

} // namespace

Player readJellyfinProfile(const std::string &path, const std::string &text)
{
    const JsonValue document = parseJson(path, text);
    if (document.kind != JsonValue::Object)
        throw ImportError(path, document.line, "it holds no object, as a device profile is");
    ObjectReader root(path, document, "");
    if (!isProfile(root))
        throw ImportError(path, document.line,
                          "it is no device profile of Jellyfin: it has neither "
                          "DirectPlayProfiles nor TranscodingProfiles nor CodecProfiles");
    Player player;
    Reader(path, player).read(root);
    if (player.name.empty()) player.name = std::filesystem::path(path).stem().string();
    return player;
}

} // namespace vornak::tool

#include "tools/import/jellyfin_profile.h"

#include "base/ascii_case.h"
#include "base/media_ids.h"
#include "tools/import/announcement.h"
#include "tools/import/jellyfin_condition.h"
#include "tools/import/limits.h"
#include "tools/import/names.h"
#include "tools/import/said_limits.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"
#include "tools/profile/regular_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <map>
#include <tuple>
#include <utility>

namespace vornak::tool {
namespace {

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

    /// Whether the container is Matroska and taken, but not WebM, which is the same file with other
    /// codecs.
    bool isButWebm(int format) const
    {
        return format == kMatroska && isExcept && takes(kMatroska) && !takes(kWebm);
    }
};

enum StreamKind { Picture, SoundOfVideo, Music };

constexpr int kAudio = 0, kVideo = 1;
constexpr NamedNumber s_MediaTypes[] = {
    {"Audio", kAudio}, {"Video", kVideo}, {"Photo", 2}, {"Subtitle", 3}, {"Lyric", 4}};
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

std::vector<int> picturesNamed(const std::string &name)
{
    const int codec = codecNamed(name);
    return isPicture(codec) ? std::vector{codec} : std::vector<int>();
}

std::vector<int> soundsNamed(const std::string &name)
{
    const int codec = codecNamed(name);
    if (isFamily(name) || codec <= 0 || isPicture(codec)) return {};
    // what extends DTS is a codec of its own here alone
    if (codec == "dts"_codec) return {codec, "dtshd"_codec};
    return {codec};
}

/// A union of very many cases as the first of them, so that it is stricter.
Union firstOf(Union all, std::size_t most)
{
    if (all.size() > most) all.resize(most);
    return all;
}

/// What keeps both; of very many cases the first.
Union both(const Union &one, const Union &other, const Note &note)
{
    constexpr std::size_t kMostCases = 100;
    const Union common = intersection(one, firstOf(other, kMostCases));
    if (std::max(other.size(), common.size()) > kMostCases)
        note.stricter("more cases than rules are made for: it holds in some");
    return firstOf(common, kMostCases);
}

Union splitByOddities(const Union &all)
{
    Union parts;
    for (const Limits &limits : all)
        for (const Limits &part : tool::splitByOddities(limits)) add(parts, part);
    return parts;
}

std::vector<Container> containersFor(const std::vector<int> &formats, bool isMusic,
                                     const Limits &sound)
{
    std::vector<Container> containers;
    containers.reserve(formats.size());
    for (const int format : formats)
        containers.push_back(isMusic ? musicIn(format, sound) : videoIn(format));
    return containers;
}

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
            noteAt(root, "SubtitleProfiles").leftOut("a Device profile says nothing of subtitles");
        root.noteUnknown(player_);
    }

private:
    /// @param place  what it is about, perhaps with a point behind it
    Note noteAt(int line, std::string place)
    {
        if (place.ends_with('.')) place.pop_back();
        return {player_.remarks, file_, line, std::move(place)};
    }
    Note noteAt(const JellyfinCondition &condition)
    {
        return noteAt(condition.line, condition.text);
    }
    Note noteAt(const ObjectReader &object) { return noteAt(object.line(), object.place()); }
    Note noteAt(ObjectReader &object, const char *key)
    {
        return noteAt(object.lineOf(key), object.place() + key);
    }

    void readTotals(ObjectReader &root)
    {
        player_.name = root.text("Name");
        for (const char *const key :
             {"MaxStreamingBitrate", "MaxStaticBitrate", "MusicStreamingTranscodingBitrate"})
            if (root.has(key))
                noteAt(root.lineOf(key), key + (" " + printable(root.text(key))))
                    .leftOut("what a connection carries of a whole file; a Device profile limits "
                             "each stream");
    }

    /// A comma list. @param idsOf  of a name; none: it isn't known
    Selection readSelection(ObjectReader &object, const char *key,
                            std::vector<int> (*idsOf)(const std::string &name), const char *what)
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
                noteAt(object, key)
                    .leftOut("no {} is known by the name \"{}\"", what, printable(written));
        }
        return selection;
    }

    Selection readCodecs(ObjectReader &object, const char *key, bool picture)
    {
        return picture ? readSelection(object, key, picturesNamed, "video codec")
                       : readSelection(object, key, soundsNamed, "audio codec");
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
            noteAt(object.line(), object.place() + "Type")
                .leftOut("no type that is known: {}", printable(written));
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
            noteAt(object, "SubContainer")
                .leftOut("the parts of a stream in pieces; files have none");
        object.noteUnknown(player_);
    }

    void readContainerProfile(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_MediaTypes);
        if (!type) return;
        const Selection formats = readContainers(object);
        const auto conditions = readConditions(object, "Conditions");
        object.noteUnknown(player_);
        if (type->number == kAudio || type->number == kVideo)
            sets_.push_back({type->number == kAudio ? Music : Picture,
                             {},
                             formats,
                             {},
                             conditions,
                             object.place(),
                             object.line()});
    }

    /// What DirectPlayProfiles and TranscodingProfiles list.
    struct Lists {
        Selection formats, pictures, sounds;
    };
    Lists readLists(ObjectReader &object)
    {
        return {readContainers(object), readCodecs(object, "VideoCodec", true),
                readCodecs(object, "AudioCodec", false)};
    }

    void readTranscoding(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_MediaTypes);
        if (!type) return;
        const Lists lists = readLists(object);
        const bool isVideo = type->number == kVideo;
        for (const int picture : isVideo ? lists.pictures.ids : std::vector{0})
            for (const int sound : lists.sounds.ids)
                for (const int format : lists.formats.ids)
                    if (player_.wishes.size() < kMostWishes)
                        player_.wishes.push_back({isVideo, picture, sound, format});
        const std::string protocol = lowerCase(object.text("Protocol"));
        object.text("Context");
        if (protocol == "hls" || protocol == "1")
            noteAt(object, "Protocol").leftOut("a file is made as a whole, not in pieces");
        for (const JellyfinCondition &condition : readConditions(object, "Conditions"))
            noteAt(condition).leftOut("what is made is described by the first rule alone");
        object.noteUnknown(player_);
    }

    void readDirectPlay(ObjectReader &object)
    {
        const NamedNumber *type = readType(object, s_MediaTypes);
        if (!type) return;
        const Lists lists = readLists(object);
        object.noteUnknown(player_);
        const int origin = originOf(player_, originText(object.place(), object.line()));
        if (type->number != kAudio && type->number != kVideo)
            return noteAt(object).leftOut("a Device profile has no rules for the type {}",
                                          type->name);
        for (const std::vector<int> &alike :
             groupsOf(formatsOf(object, lists.formats), lists.formats))
            addWays(object, lists, type->number == kVideo, alike, origin);
    }

    /// Adds what is taken in containers that the same conditions concern.
    void addWays(const ObjectReader &object, const Lists &lists, bool isVideo,
                 const std::vector<int> &alike, int origin)
    {
        const int format = alike.front();
        const bool isButWebm = lists.formats.isButWebm(format);
        const std::vector<int> sounds =
            codecsOf(object, lists.sounds, format, isVideo ? SoundOfVideo : Music, isButWebm);
        std::vector<std::optional<int>> pictures = {std::nullopt};
        if (isVideo) {
            const auto codecs = codecsOf(object, lists.pictures, format, Picture, isButWebm);
            pictures.assign(codecs.begin(), codecs.end());
        }
        for (const std::optional<int> picture : pictures)
            for (const int sound : sounds)
                if (!isButWebm || !isOfWebm(picture, sound)) addWays(picture, sound, alike, origin);
    }

    static bool isOfWebm(std::optional<int> picture, int sound)
    {
        return (!picture || canHold(kWebm, *picture)) && canHold(kWebm, sound);
    }

    /// @param picture  its codec; none: music
    void addWays(std::optional<int> picture, int sound, const std::vector<int> &alike, int origin)
    {
        const int format = alike.front();
        const StreamKind kind = picture ? SoundOfVideo : Music;
        std::vector<std::optional<Limits>> pictures = {std::nullopt};
        if (picture) {
            const Union &limits = limitsFor(*picture, format, Picture);
            pictures.assign(limits.begin(), limits.end());
        }
        const Union &sounds = limitsFor(sound, format, kind);
        count(1 + pictures.size() * sounds.size());
        const auto originsOf = [&](int codec, StreamKind each) {
            return originsFor(origin, codec, format, each);
        };
        for (const std::optional<Limits> &limits : pictures)
            for (const Limits &each : sounds)
                player_.ways.push_back({limits, each, containersFor(alike, !picture, each),
                                        picture ? originsOf(*picture, Picture) : std::vector<int>(),
                                        originsOf(sound, kind)});
    }

    /// The containers of a list, those together that the same conditions concern.
    std::vector<std::vector<int>> groupsOf(const std::vector<int> &formats,
                                           const Selection &list) const
    {
        std::map<std::vector<bool>, std::vector<int>> groups;
        for (const int format : formats) {
            std::vector<bool> concerning = {format == kWebm, list.isButWebm(format)};
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
            throw ProfileError(path_, 0,
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
            if (other == kWebm && formats.isButWebm(kMatroska))
                noteAt(object).stricter("to a rule, Matroska with WebM's codecs alone is WebM, "
                                        "too, so it is transcoded");
            else if (std::erase(all, containerPart(other)) > 0)
                noteAt(object).stricter("a rule for {} takes {}, too, so it is transcoded",
                                        containerText(containerPart(other)), containerText(other));
        }
        return all;
    }

    /// The codecs of a list. Any codec stands as such only where none has limits, since a rule for
    /// any codec looks at none; else the common ones stand for it. @param each  never "any"
    std::vector<int> codecsOf(const ObjectReader &object, const Selection &codecs, int format,
                              StreamKind kind, bool each)
    {
        std::vector<int> all = kind == Picture ? commonPictures() : commonSounds();
        const auto isTaken = [&](int codec) { return codecs.takes(codec); };
        if (format == kWebm) { // to a rule, Matroska files are WebM, too, with these codecs
            noteAt(object).looser("a rule for WebM takes Matroska with the codecs of WebM, too");
            std::erase_if(all, [&](int id) { return !isTaken(id) || !canHold(kWebm, id); });
            return all;
        }
        if (!codecs.isAll && !codecs.isExcept) return codecs.ids;
        for (const LimitSet &set : sets_)
            for (const int id : set.codecs.ids)
                if (set.kind == kind && std::ranges::find(all, id) == all.end()) all.push_back(id);
        const auto isLimited = [&](int codec) {
            return limitsFor(codec, format, kind) != Union{{.codec = codec}};
        };
        if (codecs.isAll && !each && std::ranges::none_of(all, isLimited)) return {0};
        std::erase_if(all, std::not_fn(isTaken));
        noteAt(object).stricter("any {} codec{} is said as {} common ones",
                                kind == Picture ? "video" : "audio",
                                codecs.isAll ? "" : " but some", all.size());
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
    const Union &limitsFor(int codec, int format, StreamKind kind)
    {
        const auto [entry, isNew] = known_.try_emplace({codec, format, kind});
        if (!isNew) return entry->second;
        Union all = {{.codec = codec}};
        for (const LimitSet &set : sets_) {
            if (codec == 0 || !concerns(set, codec, format, kind)) continue;
            Union narrowed = narrowedBy(set, codec, all);
            // what else is turned away on account of what the set refuses
            for (const Limits &limits : narrowed)
                if (std::ranges::find(all, limits.refused, &Limits::refused) == all.end())
                    noteOddities(limits, noteAt(set.line, set.place));
            all = std::move(narrowed);
        }
        return entry->second = std::move(all);
    }

    /// A union as the conditions of a set leave it.
    Union narrowedBy(const LimitSet &set, int codec, const Union &all)
    {
        Union conditions = {Limits{}};
        for (const JellyfinCondition &condition : set.conditions)
            if (const auto kept = thatKeep(condition, codec, noteAt(condition)))
                conditions = both(conditions, *kept, noteAt(condition));
        // where the conditions for applying can be told, too: it keeps the cases apart, so that
        // there are fewer that overlap
        Union alternatives = conditions;
        for (const JellyfinCondition &condition : set.applying)
            if (const auto kept = thatKeepExactly(condition, codec))
                alternatives = both(alternatives, *kept, noteAt(condition));
        for (const JellyfinCondition &condition : set.applying)
            for (const Limits &limits : whereNot(condition, codec)) add(alternatives, limits);
        Union narrowed = splitByOddities(intersection(all, alternatives));
        if (narrowed.size() <= kMostAlternatives) return narrowed;
        noteAt(set.line, set.place)
            .stricter("more cases than rules are made for: its conditions hold in all");
        return firstOf(splitByOddities(intersection(all, conditions)), kMostAlternatives);
    }

    /// Where a condition for applying doesn't hold; nowhere, if that can't be said exactly.
    Union whereNot(const JellyfinCondition &condition, int codec)
    {
        const auto kept = thatKeepExactly(negationOf(condition), codec);
        if (!kept)
            noteAt(condition).stricter("no rule can tell where it holds, so what it is asked for "
                                       "holds everywhere");
        else if (!kept->empty() && takesUnknown(condition) && !condition.isRequired)
            noteAt(condition).looser("where it isn't known, what it is asked for doesn't hold");
        return both({Limits{}}, kept.value_or(Union{}), noteAt(condition));
    }

    const std::string &path_;
    std::string file_;
    Player &player_;
    std::vector<LimitSet> sets_;
    std::map<std::tuple<int, int, StreamKind>, Union> known_;
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
        throw ProfileError(path, document.line, "it holds no object, as a device profile is");
    ObjectReader whole(path, document, "");
    ObjectReader root = whole.has("DeviceProfile") ? whole.object("DeviceProfile") : whole;
    if (!isProfile(root))
        throw ProfileError(path, document.line,
                           "it is no device profile of Jellyfin: it has neither "
                           "DirectPlayProfiles nor TranscodingProfiles nor CodecProfiles");
    Player player;
    Reader(path, player).read(root);
    return player;
}

} // namespace vornak::tool

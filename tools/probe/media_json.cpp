#include "tools/probe/media_json.h"

#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"

#include <limits>
#include <string_view>

namespace vornak::tool {
namespace {

using Integers = std::numeric_limits<int>;

/// Fields may be null where they hold an empty text.
template <class Text>
struct OrNull {
    Text &text;
};
template <class Text>
OrNull(Text &) -> OrNull<Text>; // which GCC can tell by itself

// The fields of each record, for both ways. One that is missing here doesn't compile.

template <class Stream, class Take>
void takeVideo(Stream &stream, const Take &take)
{
    auto &[codecId, profile, level, width, height, bitrate, bitrateEstimated, playExceptions,
           codecName, profileName, playExceptionNames] = stream;
    take("codec", codecName);
    take("codecId", codecId);
    take("profile", OrNull{profileName});
    take("profileBits", profile);
    take("level", level);
    take("width", width);
    take("height", height);
    take("bitrate", bitrate);
    take("bitrateEstimated", bitrateEstimated);
}

template <class Track, class Take>
void takeTrack(Track &track, const Take &take)
{
    auto &[number, codecId, profile, level, channels, bitrate, bitrateEstimated, sampleRate,
           isDefault, codecName, profileName, language] = track;
    take("number", number);
    take("codec", codecName);
    take("codecId", codecId);
    take("profile", OrNull{profileName});
    take("profileBits", profile);
    take("level", level);
    take("channels", channels);
    take("sampleRate", sampleRate);
    take("bitrate", bitrate);
    take("bitrateEstimated", bitrateEstimated);
    take("default", isDefault);
    take("language", language);
}

template <class Media, class Take>
void takeMedia(Media &media, const Take &take)
{
    auto &[formatId, containerName, demuxer, duration, video, audio, stillImage] = media;
    take("container", containerName);
    take("formatId", formatId);
    take("demuxer", demuxer);
    take("duration", duration);
    take("stillImage", stillImage);
    take("video", video);
    take("audioTracks", audio);
}

struct Writer {
    Json &to;

    void operator()(const char *name, const std::string &text) const { to[name] = printable(text); }
    void operator()(const char *name, OrNull<const std::string> value) const
    {
        to[name] = textOrNull(value.text);
    }
    void operator()(const char *name, int value) const { to[name] = value; }
    void operator()(const char *name, double value) const { to[name] = value; }
    void operator()(const char *name, bool value) const { to[name] = value; }
    void operator()(const char *name, const std::optional<VideoStream> &video) const
    {
        if (!(to[name] = nullptr, video)) return;
        to[name] = jsonOf(*video, video->playExceptions);
        to[name]["playExceptionBits"] = video->playExceptions;
    }
    void operator()(const char *name, const std::vector<AudioTrack> &tracks) const
    {
        to[name] = Json::array();
        for (const AudioTrack &track : tracks) to[name].push_back(jsonOf(track));
    }
};

/// Ids and sets of bits may be any number.
bool isMeasure(std::string_view name)
{
    return !name.ends_with("Id") && !name.ends_with("Bits");
}

struct Reader {
    const JsonFields &from;

    void operator()(const char *name, std::string &text) const { text = from.text(name); }
    void operator()(const char *name, OrNull<std::string> value) const
    {
        if (!from.isNull(name)) value.text = from.text(name);
    }
    void operator()(const char *name, int &value) const
    {
        value = static_cast<int>(
            from.number(name, isMeasure(name) ? 0 : Integers::min(), Integers::max()));
    }
    void operator()(const char *name, double &value) const
    {
        constexpr double kLongest = 1e13; // more seconds than the microseconds of libavformat
        value = from.number(name, kLongest);
    }
    void operator()(const char *name, bool &value) const { value = from.flag(name); }
    void operator()(const char *name, std::optional<VideoStream> &video) const
    {
        if (from.isNull(name)) return;
        const JsonFields fields = from.object(name);
        takeVideo(video.emplace(), Reader{fields});
        Reader{fields}("playExceptionBits", video->playExceptions);
        video->playExceptionNames = playExceptionTexts(video->playExceptions);
    }
    void operator()(const char *name, std::vector<AudioTrack> &tracks) const
    {
        for (const JsonFields &fields : from.list(name)) {
            takeTrack(tracks.emplace_back(), Reader{fields});
            const auto position = static_cast<std::int64_t>(tracks.size());
            fields.number("number", position, position);
        }
    }
};

} // namespace

Json jsonOf(const VideoStream &video, int playExceptions)
{
    Json json;
    takeVideo(video, Writer{json});
    json["playExceptions"] = playExceptionTexts(playExceptions);
    return json;
}

Json jsonOf(const AudioTrack &track)
{
    Json json;
    takeTrack(track, Writer{json});
    return json;
}

Json jsonOf(const SubtitleSearch &search)
{
    Json list = Json::array();
    for (const SubtitleFile &file : search.files)
        list.push_back({{"name", printable(file.name)},
                        {"nameHex", hexBytes(file.name)},
                        {"kind", file.kind},
                        {"language", textOrNull(file.language)}});
    return list;
}

Json errorOf(const SubtitleSearch &search)
{
    if (search.error.empty()) return nullptr;
    return {{"code", search.errorCode}, {"message", search.error}};
}

Json jsonOf(const MediaInfo &media)
{
    Json json;
    takeMedia(media, Writer{json});
    return json;
}

MediaInfo mediaOf(const JsonFields &fields)
{
    MediaInfo media;
    takeMedia(media, Reader{fields});
    return media;
}

} // namespace vornak::tool

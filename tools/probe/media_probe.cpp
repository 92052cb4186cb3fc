#include "tools/probe/media_probe.h"

#include "include/vornak.h"
#include "tools/probe/codec_mapping.h"
#include "tools/probe/container_mapping.h"
#include "tools/probe/media_file.h"
#include "tools/probe/play_exceptions.h"
#include "tools/probe/survey.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

constexpr int kRevision = 1; // counts the changes of what is told of some file

constexpr const char *kNoPictureSize =
    "doesn't say how large its pictures are, at least not in its first 32 megabytes";

/// Whether anything of the stream could be made out. What is taken for MP3 by its name alone
/// has none of these.
bool hasParameters(const AVStream &stream)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    return parameters.codec_type == AVMEDIA_TYPE_AUDIO
               ? parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0
               : parameters.width > 0 && parameters.height > 0;
}

int knownLevel(const AVCodecParameters &parameters)
{
    return std::max(parameters.level, 0);
}

VideoStream describeVideo(const AVStream &stream, const StreamRate &rate, const Survey &survey)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    CodecIdentity codec = identifyCodec(parameters);
    PlayExceptions exceptions =
        findPlayExceptions(stream, {.variableFrameRate = hasVariableFrameRate(survey),
                                    .interlaced = survey.start.of(stream).interlaced});
    return {
        .codecId = codec.codecId,
        .profile = codec.profile,
        .level = knownLevel(parameters),
        .width = parameters.width,
        .height = parameters.height,
        .bitrate = rate.bitrate,
        .bitrateEstimated = rate.estimated,
        .playExceptions = exceptions.bits,
        .codecName = std::move(codec.codecName),
        .profileName = std::move(codec.profileName),
        .playExceptionNames = std::move(exceptions.names),
    };
}

AudioTrack describeAudio(const AVStream &stream, const StreamRate &rate, int number)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    CodecIdentity codec = identifyCodec(parameters);
    const AVDictionaryEntry *language = av_dict_get(stream.metadata, "language", nullptr, 0);
    return {
        .number = number,
        .codecId = codec.codecId,
        .profile = codec.profile,
        .level = knownLevel(parameters),
        .channels = parameters.ch_layout.nb_channels,
        .bitrate = rate.bitrate,
        .bitrateEstimated = rate.estimated,
        .sampleRate = parameters.sample_rate,
        .isDefault = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0,
        .codecName = std::move(codec.codecName),
        .profileName = std::move(codec.profileName),
        .language = language ? language->value : "",
    };
}

MediaInfo describe(const Survey &survey)
{
    ContainerIdentity container = identifyContainer(survey.file);
    MediaInfo media;
    media.formatId = container.formatId;
    media.containerName = std::move(container.name);
    const std::string_view demuxers = survey.context.iformat->name; // the first of some names
    media.demuxer = demuxers.substr(0, demuxers.find(','));
    media.duration = survey.duration;
    for (std::size_t i = 0; i < survey.played.size(); ++i) {
        const AVStream &stream = *survey.played[i];
        const StreamRate &rate = survey.rates[i];
        if (!rate.isVideo)
            media.audio.push_back(
                describeAudio(stream, rate, static_cast<int>(media.audio.size()) + 1));
        else if (!media.video)
            media.video = describeVideo(stream, rate, survey);
    }
    return media;
}

MediaInfo describePhoto()
{
    MediaInfo media;
    media.containerName = "image";
    media.stillImage = true;
    return media;
}

bool isAudio(const AVStream *stream)
{
    return stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

/// Whether no sound that there is says anything of itself.
bool hasUntoldAudio(const std::vector<AVStream *> &played)
{
    return std::ranges::any_of(played, isAudio) &&
           std::ranges::none_of(played, [](const AVStream *stream) {
               return isAudio(stream) && hasParameters(*stream);
           });
}

bool hasUntoldVideo(const std::vector<AVStream *> &played)
{
    const AVStream *video = firstVideo(played);
    return video && !hasParameters(*video);
}

/// A picture that others follow is a film. Cameras put a few into one photo: for the other eye,
/// or with other lights.
bool isStill(const Survey &survey)
{
    const AVStream *video = firstVideo(survey.played);
    return video && survey.start.of(*video).packets < fewestPicturesOfFilm(survey.context);
}

} // namespace

ProbeResult probeMedia(const std::string &path)
{
    std::optional<MediaFile> file(std::in_place, path, Search::Usual);
    if (file->context()) {
        const std::vector<AVStream *> played = playedStreams(*file->context());
        if (hasUntoldVideo(played) || hasUntoldAudio(played)) file.emplace(path, Search::Far);
    }
    if (file->isOpen() && hasPhotoBrand(*file)) return {describePhoto(), {}, {}};
    if (!file->context())
        return {{}, file->isOpen() ? "cannot-probe" : "cannot-open", file->error()};
    const Survey survey = surveyFile(*file);
    if (isStill(survey)) return {describePhoto(), {}, {}};
    if (hasUntoldVideo(survey.played)) return {{}, "cannot-probe", kNoPictureSize};
    if (!firstVideo(survey.played) && hasUntoldAudio(survey.played))
        return {{}, "cannot-probe", kNotMedia};
    return {describe(survey), {}, {}};
}

std::string probeVersion()
{
    const unsigned format = avformat_version(), codec = avcodec_version();
    return fmt::format("vornak {}.{}, libavformat {}.{}.{}, libavcodec {}.{}.{}", VORNAK_VERSION,
                       kRevision, AV_VERSION_MAJOR(format), AV_VERSION_MINOR(format),
                       AV_VERSION_MICRO(format), AV_VERSION_MAJOR(codec), AV_VERSION_MINOR(codec),
                       AV_VERSION_MICRO(codec));
}

} // namespace vornak::tool
